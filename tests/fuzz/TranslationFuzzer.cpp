#include "support/Application.h"

#include "host/adaptor/Adaptor.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include <orvane/engine/OwnStatements.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include <QSqlDriver>

#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Whatever the dialect understands is translated and prepared on an engine database. SQLite may miss a name,
// count arguments or refuse an aggregate; it never stumbles over the grammar.

using namespace orvane;

namespace {

constexpr const char* tables = R"(
Create Table t (a, b, c, cd750f8a9a2b4fac9b9b05eb53795d97, d39f65c319974aa198a899a89b1240c7);
Create Table u (a, b, c, cd750f8a9a2b4fac9b9b05eb53795d97, d39f65c319974aa198a899a89b1240c7);
Create Table cities (name Text Collate Locale, population Integer, cd750f8a9a2b4fac9b9b05eb53795d97);
Create Table countries (name Text Collate Locale, iso Text, cd750f8a9a2b4fac9b9b05eb53795d97);
)";

Engine& engineWithTables() {
    static Engine& engine = []() -> Engine& {
        auto& application = testing::Application::instance();
        application.engine->loadTableAdapterModule(&application.core, adaptor::initialise);
        return *application.engine;
    }();
    return engine;
}

sqlite3* database() {
    static sqlite3* const handle = [] {
        const QVariant driverHandle = engineWithTables().engineDatabase().driver()->handle();
        auto* opened = *static_cast<sqlite3* const*>(driverHandle.constData());
        const engine::OwnStatements own;
        sqlite3_exec(opened, tables, nullptr, nullptr, nullptr);
        // Nested table expressions multiply; the grammar shows with few of them.
        sqlite3_limit(opened, SQLITE_LIMIT_COMPOUND_SELECT, 20);
        sqlite3_limit(opened, SQLITE_LIMIT_VDBE_OP, 20000);
        return opened;
    }();
    return handle;
}

/// Names in other messages may sound like one.
bool isGrammarError(const std::string& message) {
    return message == "incomplete input" || message.starts_with("unrecognized token: ") ||
           (message.starts_with("near \"") && message.ends_with("\": syntax error"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    sql::SqlParser parser(nullptr);
    if (!parser.parse(text)) {
        return 0;
    }
    engine::SqliteStringBuilder builder(QString(), nullptr);
    if (!engineWithTables().tryToTranslate(text, builder, Engine::ParseAsIs)) {
        return 0;
    }
    const std::string translated =
        (parser.result().isExpression() ? "Select " : "") + sql::toUtf8(builder.query());
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(database(), translated.data(), static_cast<int>(translated.size()),
                                        &statement, nullptr);
    const std::string message = code == SQLITE_OK ? std::string() : sqlite3_errmsg(database());
    sqlite3_finalize(statement);
    if (isGrammarError(message)) {
        std::fprintf(stderr, "%s\n%s\n%s\n", message.c_str(), text.c_str(), translated.c_str());
        std::abort();
    }
    return 0;
}
