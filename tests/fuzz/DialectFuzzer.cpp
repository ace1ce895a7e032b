#include <orvane/engine/SqliteStringBuilder.h>

#include "platform/sql/Script.h"
#include "platform/sql/SqlParser.h"
#include "platform/sql/SqlStringBuilder.h"
#include "platform/sql/SqlStrings.h"

#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

// Any bytes: the lexer, the parser, both builders and SQLite's own parser have to come to an end without a
// fault, and what the dialect prints it has to understand again.

using namespace orvane;

namespace {

[[noreturn]] void report(const char* what, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", what, text.c_str());
    std::abort();
}

sqlite3* scratchDatabase() {
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    static const std::unique_ptr<sqlite3, Close> database([] {
        sqlite3* handle = nullptr;
        sqlite3_open(":memory:", &handle);
        sqlite3_exec(handle, "Create Table t (a, b); Create Table u (a, b)", nullptr, nullptr, nullptr);
        return handle;
    }());
    return database.get();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    sql::splitScript(text);
    sql::SqlParser parser(nullptr);
    if (!parser.parse(text)) {
        if (parser.errors().empty() || !parser.errors().front()->place()) {
            report("a refusal without a place", text);
        }
        return 0;
    }
    const std::string printed =
        sql::toUtf8(sql::SqlStringBuilder(nullptr).buildString(*parser.result().node()));
    sql::SqlParser again(nullptr);
    if (!again.parse(printed)) {
        report(again.errors().front()->what(), printed);
    }
    const std::string reprinted =
        sql::toUtf8(sql::SqlStringBuilder(nullptr).buildString(*again.result().node()));
    if (reprinted != printed) {
        report("printed differently the second time", printed + '\n' + reprinted);
    }

    engine::SqliteStringBuilder builder(QStringLiteral("Locale"), nullptr);
    const std::string translated = sql::toUtf8(builder.buildString(*parser.result().node()));
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(scratchDatabase(), translated.c_str(), static_cast<int>(translated.size()), &statement,
                       nullptr);
    sqlite3_finalize(statement);
    return 0;
}
