#include <orvane/engine/SqliteStringBuilder.h>

#include "platform/sql/lexing/Lexer.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <string>

// Translation of a statement of 200 characters, beside SQLite's own preparation of the result over plain
// tables. The first should take less time than the second.

namespace {

using namespace orvane;

const std::string statement =
    "Select c.name, k.name_long As country, c.population / k.pop * 100 As share "
    "From cities c, countries k Where c.obj Within k.obj And k.continent = 'Africa' "
    "And c.population > 500000 Order By share Desc";

std::string translate(const std::string& text) {
    sql::SqlParser parser(nullptr);
    if (!parser.parse(text)) {
        return {};
    }
    engine::SqliteStringBuilder builder(QStringLiteral("Locale"), nullptr);
    return sql::toUtf8(builder.buildString(*parser.result().node()));
}

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

std::unique_ptr<sqlite3, CloseDatabase> openScratchDatabase() {
    sqlite3* handle = nullptr;
    sqlite3_open(":memory:", &handle);
    std::unique_ptr<sqlite3, CloseDatabase> database(handle);
    const auto nothing = [](sqlite3_context*, int, sqlite3_value**) {};
    for (const char* name : {"divide", "CentroidWithin"}) {
        sqlite3_create_function(handle, name, 2, SQLITE_UTF8, nullptr, nothing, nullptr, nullptr);
    }
    sqlite3_create_collation(handle, "Locale", SQLITE_UTF8, nullptr,
                             [](void*, int, const void*, int, const void*) { return 0; });
    sqlite3_exec(handle,
                 "Create Table cities (name, country, population, cd750f8a9a2b4fac9b9b05eb53795d97);"
                 "Create Table countries (name_long, continent, pop, cd750f8a9a2b4fac9b9b05eb53795d97);",
                 nullptr, nullptr, nullptr);
    return database;
}

void tokenizeStatement(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(sql::tokenize(statement));
    }
}
BENCHMARK(tokenizeStatement);

void parseStatement(benchmark::State& state) {
    for (auto _ : state) {
        sql::SqlParser parser(nullptr);
        benchmark::DoNotOptimize(parser.parse(statement));
    }
}
BENCHMARK(parseStatement);

void translateStatement(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(translate(statement));
    }
    state.counters["characters"] = static_cast<double>(statement.size());
}
BENCHMARK(translateStatement);

void prepareTranslated(benchmark::State& state) {
    const auto database = openScratchDatabase();
    const std::string text = translate(statement);
    for (auto _ : state) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare_v2(database.get(), text.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
            state.SkipWithError(sqlite3_errmsg(database.get()));
            break;
        }
        sqlite3_finalize(prepared);
    }
}
BENCHMARK(prepareTranslated);

} // namespace

BENCHMARK_MAIN();
