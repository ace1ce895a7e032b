#include "support/Host.h"
#include "support/MemoryTable.h"

#include "platform/sql/lexing/Script.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include <orvane/engine/SqliteStringBuilder.h>

#include <QFile>
#include <QSqlDriver>

#include <sqlite3.h>

#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

// Whole scripts run over tables of files and of memory, and what they change is taken back. Nothing crashes,
// every statement can be ended, and every table has its rows again.

using namespace orvane;

namespace {

constexpr auto longest = std::chrono::milliseconds(200);
constexpr int mostRows = 1000;
constexpr int mostStatements = 16;

constexpr char towns[] =
    "name,code,n,day,lon,lat\nМосква,MOW,13,2024-05-06,37.6,55.8\nParis,PAR,2,NA,2.35,48.86\n"
    "São Paulo,,12,2021-03-15,-46.6,-23.5\n\"a, \"\"b\"\"\",x,-1,,0,0\n";
constexpr char shapes[] = R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"id":1,"s":"один"},"geometry":{"type":"LineString","coordinates":[[0,0],[1,1],[1,0]]}},
{"type":"Feature","properties":{"id":2,"s":null},"geometry":{"type":"Polygon","coordinates":[[[0,0],[4,0],[4,4],[0,0]]]}},
{"type":"Feature","properties":{"id":null,"s":""},"geometry":null},
{"type":"Feature","properties":{"id":4,"s":"🚲"},"geometry":{"type":"MultiPoint","coordinates":[[2,2],[3,1]]}}]})";

/// Ends a statement that takes too long, from a thread of its own, as Ctrl-C does.
class Watch {
public:
    explicit Watch(Engine& engine) : engine_(engine), thread_([this] { watch(); }) { thread_.detach(); }

    void begin() { set(std::chrono::steady_clock::now() + longest); }
    void end() { set(std::chrono::steady_clock::time_point::max()); }

private:
    void set(std::chrono::steady_clock::time_point deadline) {
        const std::lock_guard lock(mutex_);
        deadline_ = deadline;
        changed_.notify_one();
    }
    void watch() {
        std::unique_lock lock(mutex_);
        while (true) {
            const auto deadline = deadline_;
            if (std::chrono::steady_clock::now() >= deadline) {
                engine_.cancelQuery();
                changed_.wait_for(lock, std::chrono::milliseconds(2));
            } else if (deadline == std::chrono::steady_clock::time_point::max()) {
                changed_.wait(lock);
            } else {
                changed_.wait_until(lock, deadline);
            }
        }
    }

    Engine& engine_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::time_point::max();
    std::thread thread_;
};

struct World {
    World() {
        write("towns.csv", towns);
        write("shapes.geojson", shapes);
        const QString countries = host.path(QStringLiteral("countries.gpkg"));
        QFile::copy(QStringLiteral(ORVANE_EXAMPLE_DATA "/countries.gpkg"), countries);
        QFile::setPermissions(countries, QFile::ReadOwner | QFile::WriteOwner);
        host.open(countries);
        addMemoryTable();
        const QVariant handle = host.engine->engineDatabase().driver()->handle();
        database = *static_cast<sqlite3* const*>(handle.constData());
        sqlite3_limit(database, SQLITE_LIMIT_LENGTH, 16 << 20); // for the sake of speed
        before = counts();
    }

    void write(const char* name, const char* content) {
        const QString path = host.path(QLatin1String(name));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0) {
            std::abort();
        }
        file.close();
        host.open(path);
    }

    void addMemoryTable() {
        using testing::MemoryTable;
        QVector<dp::AttributeDefinitionPointer> attributes;
        for (const auto& [name, type] :
             {std::pair{"a", QMetaType::LongLong}, std::pair{"b", QMetaType::QString},
              std::pair{"c", QMetaType::Double}}) {
            attributes << dp::AttributeDefinitionPointer(
                new dp::SimpleAttributeDefinition(QLatin1String(name), type, {}));
        }
        std::vector<MemoryTable::Row> rows;
        for (int i = 0; i < 60; ++i) {
            rows.push_back({i % 7 == 0 ? QVariant() : QVariant(i % 5), QString(i % 4, QLatin1Char('x')),
                            i % 3 == 0 ? QVariant() : QVariant(i / 2.0)});
        }
        host.catalog.add(std::make_shared<MemoryTable>(QStringLiteral("t"), attributes, std::move(rows)));
        testing::Host::deliverSignals();
    }

    std::string counts() {
        std::string text;
        for (const char* table : {"towns", "shapes", "countries", "t"}) {
            text += host.ask(QStringLiteral("Select Count(*) From %1").arg(QLatin1String(table))) + '\n';
        }
        return text;
    }

    testing::Host& host = testing::Host::instance();
    Watch watch{*host.engine};
    sqlite3* database = nullptr;
    std::string before;
};

std::string translate(World& world, const std::string& text) {
    sql::SqlParser parser(nullptr);
    engine::SqliteStringBuilder builder(QString(), nullptr);
    builder.setSelection(world.host.catalog.selection(), world.host.engine->cache());
    if (!parser.parse(text) ||
        !world.host.engine->tryToTranslate(parser.result(), builder, Engine::ParseAsIs)) {
        return {};
    }
    return (builder.isExpression() ? "Select " : "") + sql::toUtf8(builder.query());
}

/// Whether it changes a table.
bool run(World& world, const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(world.database, text.data(), static_cast<int>(text.size()), &statement, nullptr);
    if (!statement) {
        return false;
    }
    const bool isEdit = sqlite3_stmt_readonly(statement) == 0;
    for (int row = 0; row < mostRows && sqlite3_step(statement) == SQLITE_ROW; ++row) {
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            sqlite3_column_text(statement, column);
            sqlite3_column_bytes(statement, column);
        }
    }
    sqlite3_finalize(statement);
    return isEdit;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World& world = *new World; // the engine goes with the process
    const std::string text(reinterpret_cast<const char*>(data), size);
    world.watch.begin();
    sqlite3_exec(world.database, "Begin", nullptr, nullptr, nullptr);
    bool hasEdits = false;
    int statements = 0;
    for (const sql::ScriptStatement& part : sql::splitScript(text).statements) {
        if (++statements > mostStatements) {
            break;
        }
        if (const std::string translated = translate(world, part.text); !translated.empty()) {
            hasEdits = run(world, translated) || hasEdits;
        }
    }
    world.watch.end();
    sqlite3_exec(world.database, "Rollback", nullptr, nullptr, nullptr);
    testing::Host::deliverSignals();
    if (hasEdits && world.counts() != world.before) {
        std::fprintf(stderr, "rows before:\n%safter:\n%s", world.before.c_str(), world.counts().c_str());
        std::abort();
    }
    return 0;
}
