// The text functions and patterns over a million texts, each beside the function of SQLite that does nearly
// the same. "Texts" are half Latin, half Cyrillic; the argument 0 of a pair is ours, 1 SQLite's own.
#include "host/adaptor/functions/FunctionRegistry.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int rows = 1000000;

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

void run(sqlite3* database, const char* sql) {
    if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

Database open(bool ours) {
    sqlite3* raw = nullptr;
    if (sqlite3_open(":memory:", &raw) != SQLITE_OK) {
        throw std::runtime_error("no database");
    }
    Database database(raw);
    run(raw, ("Create Table texts(latin Text, cyrillic Text, date Text);"
              "With Recursive n(i) As (Select 0 Union All Select i + 1 From n Where i < " +
              std::to_string(rows - 1) +
              ") Insert Into texts Select 'Street No. ' || i || ' of the old town', 'Улица № ' || i || ' "
              "Старого города', date('1990-01-01', '+' || (i % 9000) || ' days') From n")
                 .c_str());
    if (ours) {
        const std::vector<orvane::adaptor::FunctionRecord> records = orvane::adaptor::allFunctionRecords();
        if (orvane::adaptor::registerFunctions(raw, records, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(raw));
        }
    }
    return database;
}

/// One pass over the table, all of it in SQLite: the function and a count of its non-NULL results.
void scan(benchmark::State& state, const char* ours, const char* builtIn) {
    static const Database withFunctions = open(true);
    static const Database plain = open(false);
    const bool isOurs = state.range(0) == 0;
    const Database& database = isOurs ? withFunctions : plain;
    const std::string sql = std::string("Select count(") + (isOurs ? ours : builtIn) + ") From texts";
    for (auto _ : state) {
        run(database.get(), sql.c_str());
    }
    state.SetItemsProcessed(state.iterations() * rows);
}

[[maybe_unused]] const int registered = [] {
    struct Pair {
        const char* name;
        const char* ours;
        const char* builtIn;
    };
    static const Pair pairs[] = {
        {"column", "latin", "latin"},
        {"left", "\"Left\"(latin, 6)", "substr(latin, 1, 6)"},
        {"left_cyrillic", "\"Left\"(cyrillic, 6)", "substr(cyrillic, 1, 6)"},
        {"mid", "Mid(latin, 8, 6)", "substr(latin, 8, 6)"},
        {"mid_cyrillic", "Mid(cyrillic, 8, 6)", "substr(cyrillic, 8, 6)"},
        {"len", "Len(latin)", "length(latin)"},
        {"len_cyrillic", "Len(cyrillic)", "length(cyrillic)"},
        {"upcase", "UpCase(latin)", "upper(latin)"},
        {"upcase_cyrillic", "UpCase(cyrillic)", "upper(cyrillic)"},
        {"instr", "InStr(latin, 'old')", "instr(latin, 'old')"},
        {"instr_cyrillic", "InStr(cyrillic, 'города')", "instr(cyrillic, 'города')"},
        {"like_prefix", "latin Like 'street%'", "latin Like 'street%'"},
        {"like_abc", "latin Like 'abc%'", "latin Like 'abc%'"},
        {"like_within", "latin Like '%999%town'", "latin Like '%999%town'"},
        {"like_cyrillic", "cyrillic Like '%города'", "cyrillic Like '%города'"},
        {"glob", "latin Glob '*[0-9]99*'", "latin Glob '*[0-9]99*'"},
        {"divide", "divide(rowid, 7)", "rowid * 1.0 / 7"},
        {"day", "Day(date)", "strftime('%d', date)"},
        {"concat", "concat(latin, date)", "latin || date"},
        {"string_to_date", "StringToDate(date)", "julianday(date)"},
        {"format", "Format(rowid, '#,##0.00')", "printf('%,.2f', rowid * 1.0)"},
    };
    for (const Pair& pair : pairs) {
        benchmark::RegisterBenchmark(
            pair.name, [&pair](benchmark::State& state) { scan(state, pair.ours, pair.builtIn); })
            ->Arg(0)
            ->Arg(1)
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.5);
    }
    return 0;
}();

} // namespace

BENCHMARK_MAIN();
