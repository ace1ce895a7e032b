#include "host/adaptor/module/SeriesModule.h"

#include "host/adaptor/module/Series.h"

#include <sqlite3.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>

namespace orvane::adaptor {

namespace {

/// `value`, then the arguments.
constexpr int firstArgument = 1;
constexpr int argumentCount = 3;
constexpr const char* declaration = "Create Table t(value, first Hidden, last Hidden, step Hidden)";

/// Rows of a series whose ends are not known when it is planned.
constexpr double usualCount = 1000;

struct SeriesTable : sqlite3_vtab {};
struct SeriesCursor : sqlite3_vtab_cursor {
    std::optional<Series> series;
};

SeriesCursor& cursorOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<SeriesCursor*>(cursor);
}

/// Turns what the body throws into SQLite's code, and its text into the table's message.
template<typename Body>
int guarded(sqlite3_vtab* table, Body body) noexcept {
    try {
        body();
        return SQLITE_OK;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const std::exception& failure) {
        sqlite3_free(table->zErrMsg);
        table->zErrMsg = sqlite3_mprintf("%s", failure.what());
        return SQLITE_ERROR;
    }
}

int xConnect(sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table, char**) {
    const int code = sqlite3_declare_vtab(database, declaration);
    *table = code == SQLITE_OK ? new (std::nothrow) SeriesTable() : nullptr;
    return code == SQLITE_OK && !*table ? SQLITE_NOMEM : code;
}

int xDisconnect(sqlite3_vtab* table) {
    delete static_cast<SeriesTable*>(table);
    return SQLITE_OK;
}

int xOpen(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
    *cursor = new (std::nothrow) SeriesCursor();
    return *cursor ? SQLITE_OK : SQLITE_NOMEM;
}

int xClose(sqlite3_vtab_cursor* cursor) {
    delete &cursorOf(cursor);
    return SQLITE_OK;
}

/// The arguments as far as they are constants, and how many rows that makes.
double expectedCount(sqlite3_index_info* info, const int (&terms)[argumentCount]) {
    sqlite3_value* values[argumentCount] = {};
    for (int i = 0; i < argumentCount; ++i) {
        if (terms[i] >= 0 &&
            (sqlite3_vtab_rhs_value(info, terms[i], &values[i]) != SQLITE_OK || !values[i])) {
            return usualCount;
        }
    }
    try {
        const auto series = Series::of(values[0], values[1], values[2]);
        return series ? static_cast<double>(series->count()) : 0;
    } catch (const std::exception&) {
        return usualCount; // the scan will tell
    }
}

/// Each argument becomes one of xFilter; idxNum tells whether there is a step.
int xBestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
    int terms[argumentCount] = {-1, -1, -1};
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& term = info->aConstraint[i];
        const int argument = term.iColumn - firstArgument;
        if (argument < 0 || argument >= argumentCount || term.op != SQLITE_INDEX_CONSTRAINT_EQ) {
            continue;
        }
        if (term.usable == 0) {
            return SQLITE_CONSTRAINT; // the tables that give the argument have to come before
        }
        terms[argument] = i;
    }
    if (terms[0] < 0 || terms[1] < 0) {
        sqlite3_free(table->zErrMsg);
        table->zErrMsg = sqlite3_mprintf("Generate_Series: expected the first and the last value");
        return SQLITE_ERROR;
    }
    int next = 0;
    for (const int term : terms) {
        if (term >= 0) {
            info->aConstraintUsage[term].argvIndex = ++next;
            info->aConstraintUsage[term].omit = 1;
        }
    }
    info->idxNum = next;
    const double count = expectedCount(info, terms);
    info->estimatedRows = static_cast<sqlite3_int64>(std::clamp(count, 1.0, 1e15));
    info->estimatedCost = count;
    return SQLITE_OK;
}

int xFilter(sqlite3_vtab_cursor* cursor, int, const char*, int count, sqlite3_value** values) {
    return guarded(cursor->pVtab, [&] {
        cursorOf(cursor).series =
            Series::of(values[0], values[1], count == argumentCount ? values[2] : nullptr);
    });
}

int xNext(sqlite3_vtab_cursor* cursor) {
    cursorOf(cursor).series->advance();
    return SQLITE_OK;
}

int xEof(sqlite3_vtab_cursor* cursor) {
    const auto& series = cursorOf(cursor).series;
    return !series || series->isAtEnd() ? 1 : 0;
}

int xColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
    return guarded(cursor->pVtab, [&] {
        if (column == 0) {
            cursorOf(cursor).series->setValue(context);
        }
    });
}

int xRowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* rowNumber) {
    *rowNumber = cursorOf(cursor).series->place();
    return SQLITE_OK;
}

constexpr sqlite3_module seriesModule = [] {
    sqlite3_module module{};
    module.xConnect = xConnect; // without xCreate there is nothing to be created: the module is the table
    module.xBestIndex = xBestIndex;
    module.xDisconnect = xDisconnect;
    module.xOpen = xOpen;
    module.xClose = xClose;
    module.xFilter = xFilter;
    module.xNext = xNext;
    module.xEof = xEof;
    module.xColumn = xColumn;
    module.xRowid = xRowid;
    return module;
}();

} // namespace

int registerSeries(sqlite3* database) {
    return sqlite3_create_module_v2(database, "Generate_Series", &seriesModule, nullptr, nullptr);
}

} // namespace orvane::adaptor
