#include "engine/expression/FeatureRowModule.h"

#include "platform/core/SqliteBarrier.h"
#include "platform/dp/SqliteCell.h"

#include <sqlite3.h>

// The callbacks of SQLite's virtual-table interface, under SQLite's names, for a table of at most one row.

namespace orvane::engine {

namespace {

using State = FeatureRow::State;

struct RowTable : sqlite3_vtab {
    explicit RowTable(std::shared_ptr<State> shown) : sqlite3_vtab{}, state(std::move(shown)) {}
    std::shared_ptr<State> state;
};

struct RowCursor : sqlite3_vtab_cursor {
    RowCursor() : sqlite3_vtab_cursor{} {}
    bool atEnd = true;
    bool advances = false; ///< to further features
};

State& stateOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<RowTable*>(cursor->pVtab)->state;
}

int xConnect(sqlite3* database, void* clientData, int, const char* const*, sqlite3_vtab** result,
             char** message) {
    const auto& state = *static_cast<std::shared_ptr<State>*>(clientData);
    if (const int code = sqlite3_declare_vtab(database, state->declaration.constData()); code != SQLITE_OK) {
        *message = sqlite3_mprintf("%s", sqlite3_errmsg(database));
        return code;
    }
    return err::barrier(message, [&] {
        *result = new RowTable(state);
        return SQLITE_OK;
    });
}

int xDisconnect(sqlite3_vtab* table) {
    delete static_cast<RowTable*>(table);
    return SQLITE_OK;
}

int xBestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
    static_cast<RowTable*>(table)->state->usedColumns |= info->colUsed;
    info->estimatedCost = 1;
    info->estimatedRows = 1;
    return SQLITE_OK;
}

int xOpen(sqlite3_vtab* table, sqlite3_vtab_cursor** result) {
    return err::barrier(&table->zErrMsg, [&] {
        *result = new RowCursor;
        return SQLITE_OK;
    });
}

int xClose(sqlite3_vtab_cursor* cursor) {
    delete static_cast<RowCursor*>(cursor);
    return SQLITE_OK;
}

int xFilter(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value**) {
    State& state = stateOf(cursor);
    auto& row = *static_cast<RowCursor*>(cursor);
    row.atEnd = !state.hasRow;
    row.advances = state.advance && ++state.numScans == 1;
    return SQLITE_OK;
}

int xNext(sqlite3_vtab_cursor* cursor) {
    return err::barrier(cursor, [cursor] {
        const State& state = stateOf(cursor);
        auto& row = *static_cast<RowCursor*>(cursor);
        row.atEnd = !row.advances || !state.advance || !state.advance();
        return SQLITE_OK;
    });
}

int xEof(sqlite3_vtab_cursor* cursor) {
    return static_cast<RowCursor*>(cursor)->atEnd;
}

int xColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
    return err::barrier(cursor, [&] {
        dp::setResult(context, stateOf(cursor).cell(static_cast<std::size_t>(column)));
        return SQLITE_OK;
    });
}

int xRowid(sqlite3_vtab_cursor*, sqlite3_int64* rowNumber) {
    *rowNumber = 1;
    return SQLITE_OK;
}

int xRename(sqlite3_vtab*, const char*) {
    return SQLITE_OK;
}

constexpr sqlite3_module rowModule = [] {
    sqlite3_module module{};
    module.xCreate = xConnect;
    module.xConnect = xConnect;
    module.xBestIndex = xBestIndex;
    module.xDisconnect = xDisconnect;
    module.xDestroy = xDisconnect;
    module.xOpen = xOpen;
    module.xClose = xClose;
    module.xFilter = xFilter;
    module.xNext = xNext;
    module.xEof = xEof;
    module.xColumn = xColumn;
    module.xRowid = xRowid;
    module.xRename = xRename;
    return module;
}();

} // namespace

int registerFeatureRow(sqlite3* database, const QByteArray& name, const std::shared_ptr<State>& state) {
    if (!state) {
        return sqlite3_create_module_v2(database, name.constData(), nullptr, nullptr, nullptr);
    }
    return sqlite3_create_module_v2(
        database, name.constData(), &rowModule, new std::shared_ptr<State>(state),
        [](void* clientData) { delete static_cast<std::shared_ptr<State>*>(clientData); });
}

} // namespace orvane::engine
