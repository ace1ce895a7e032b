// A library that SQLite loads: the function loaded_answer() and the table-valued function loaded_answers, of
// one row.

#include <sqlite3ext.h>

SQLITE_EXTENSION_INIT1

namespace {

struct Cursor : sqlite3_vtab_cursor {
    bool atEnd = false;
};

int xConnect(sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table, char**) {
    *table = new sqlite3_vtab{};
    return sqlite3_declare_vtab(database, "Create Table x(answer)");
}

int xBestIndex(sqlite3_vtab*, sqlite3_index_info*) {
    return SQLITE_OK;
}

int xDisconnect(sqlite3_vtab* table) {
    delete table;
    return SQLITE_OK;
}

int xOpen(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
    *cursor = new Cursor{};
    return SQLITE_OK;
}

int xClose(sqlite3_vtab_cursor* cursor) {
    delete static_cast<Cursor*>(cursor);
    return SQLITE_OK;
}

int xFilter(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value**) {
    static_cast<Cursor*>(cursor)->atEnd = false;
    return SQLITE_OK;
}

int xNext(sqlite3_vtab_cursor* cursor) {
    static_cast<Cursor*>(cursor)->atEnd = true;
    return SQLITE_OK;
}

int xEof(sqlite3_vtab_cursor* cursor) {
    return static_cast<Cursor*>(cursor)->atEnd ? 1 : 0;
}

int xColumn(sqlite3_vtab_cursor*, sqlite3_context* context, int) {
    sqlite3_result_int(context, 42);
    return SQLITE_OK;
}

int xRowid(sqlite3_vtab_cursor*, sqlite3_int64* rowNumber) {
    *rowNumber = 0;
    return SQLITE_OK;
}

const sqlite3_module answers = [] {
    sqlite3_module module{};
    module.xConnect = xConnect;
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

extern "C" __attribute__((visibility("default"))) int
sqlite3_extension_init(sqlite3* database, char**, const sqlite3_api_routines* api) {
    SQLITE_EXTENSION_INIT2(api)
    sqlite3_create_function(
        database, "loaded_answer", 0, SQLITE_UTF8, nullptr,
        [](sqlite3_context* context, int, sqlite3_value**) { sqlite3_result_int(context, 42); }, nullptr,
        nullptr);
    return sqlite3_create_module(database, "loaded_answers", &answers, nullptr);
}
