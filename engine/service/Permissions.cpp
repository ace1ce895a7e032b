#include "engine/service/Permissions.h"

#include "platform/sql/tree/FunctionInfo.h"
#include <orvane/engine/OwnStatements.h>

#include <algorithm>
#include <memory>

namespace orvane {

namespace {

thread_local int numOwn = 0;

/// Answers about the engine database that change nothing.
constexpr std::string_view readingPragmas[] = {"collation_list", "compile_options", "database_list",
                                               "function_list",  "module_list",     "pragma_list",
                                               "table_info",     "table_list",      "table_xinfo"};

/// Of the dialect's functions those of SpatiaLite that do more than compute: they take texts for PROJ, in
/// which files may be named, or make tables.
struct Overload {
    const char* name;
    int arity;
};
constexpr Overload unwanted[] = {{"Transform", 3},    {"Transform", 4},    {"Transform", 5},
                                 {"ST_Transform", 3}, {"ST_Transform", 4}, {"ST_Transform", 5},
                                 {"ST_Cutter", 7},    {"ST_Cutter", 8},    {"ST_Cutter", 9}};

struct Action {
    int code;
    const char* words;
};
constexpr Action actions[] = {
    {SQLITE_CREATE_INDEX, "Create Index"},
    {SQLITE_CREATE_TABLE, "Create Table"},
    {SQLITE_CREATE_TEMP_INDEX, "Create Index"},
    {SQLITE_CREATE_TEMP_TABLE, "Create Temp Table"},
    {SQLITE_CREATE_TEMP_TRIGGER, "Create Temp Trigger"},
    {SQLITE_CREATE_TEMP_VIEW, "Create Temp View"},
    {SQLITE_CREATE_TRIGGER, "Create Trigger"},
    {SQLITE_CREATE_VIEW, "Create View"},
    {SQLITE_CREATE_VTABLE, "Create Virtual Table"},
    {SQLITE_DROP_INDEX, "Drop Index"},
    {SQLITE_DROP_TABLE, "Drop Table"},
    {SQLITE_DROP_TEMP_INDEX, "Drop Index"},
    {SQLITE_DROP_TEMP_TABLE, "Drop Table"},
    {SQLITE_DROP_TEMP_TRIGGER, "Drop Trigger"},
    {SQLITE_DROP_TEMP_VIEW, "Drop View"},
    {SQLITE_DROP_TRIGGER, "Drop Trigger"},
    {SQLITE_DROP_VIEW, "Drop View"},
    {SQLITE_DROP_VTABLE, "Drop Table"},
    {SQLITE_INSERT, "Insert Into"},
    {SQLITE_UPDATE, "Update"},
    {SQLITE_DELETE, "Delete From"},
    {SQLITE_PRAGMA, "Pragma"},
    {SQLITE_READ, "Select From"},
    {SQLITE_ATTACH, "Attach"},
    {SQLITE_DETACH, "Detach"},
    {SQLITE_ALTER_TABLE, "Alter Table"},
    {SQLITE_REINDEX, "Reindex"},
    {SQLITE_ANALYZE, "Analyze"},
    {SQLITE_FUNCTION, "Select"},
};

std::string described(int action, std::string_view first, std::string_view second) {
    const std::string_view name = action == SQLITE_FUNCTION || action == SQLITE_ALTER_TABLE ? second : first;
    const auto* known = std::find_if(std::begin(actions), std::end(actions),
                                     [action](const Action& each) { return each.code == action; });
    std::string text = known == std::end(actions) ? std::string("?") : std::string(known->words);
    return name.empty() ? text : text + ' ' + std::string(name);
}

char folded(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string_view view(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

} // namespace

engine::OwnStatements::OwnStatements() {
    ++numOwn;
}

engine::OwnStatements::~OwnStatements() {
    --numOwn;
}

bool engine::OwnStatements::areRun() {
    return numOwn != 0;
}

std::size_t Permissions::Hash::operator()(std::string_view name) const {
    std::size_t hash = 0;
    for (const char letter : name) {
        hash = hash * 31 + static_cast<unsigned char>(folded(letter));
    }
    return hash;
}

bool Permissions::Equal::operator()(std::string_view a, std::string_view b) const {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return folded(x) == folded(y); });
}

Permissions::Permissions(sqlite3* database) : database_(database) {
    for (const sql::FunctionInfo& info : sql::functionInfos()) {
        allow(info.name);
    }
    for (const Overload& each : unwanted) {
        sqlite3_create_function(database_, each.name, each.arity, SQLITE_UTF8, nullptr, nullptr, nullptr,
                                nullptr);
    }
    // The modules of SQLite and SpatiaLite read files, addresses and other connections' memory; the engine
    // needs none of them.
    sqlite3_drop_modules(database_, nullptr);
    sqlite3_limit(database_, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0, nullptr);
    // A view whose tables are closed keeps no other table from being renamed.
    sqlite3_db_config(database_, SQLITE_DBCONFIG_LEGACY_ALTER_TABLE, 1, nullptr);
    sqlite3_set_authorizer(database_, &Permissions::authorize, this);
}

void Permissions::letGo() {
    sqlite3_set_authorizer(database_, nullptr, nullptr);
}

std::vector<std::string> Permissions::modules() const {
    std::vector<std::string> names;
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(database_, "Select name From pragma_module_list", -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(prepared, &sqlite3_finalize);
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0)));
    }
    return names;
}

void Permissions::closeModulesBut(const std::vector<std::string>& known) {
    for (std::string& name : modules()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            closedModules_.insert(std::move(name));
        }
    }
}

bool Permissions::permits(int action, std::string_view first, std::string_view second) const {
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_RECURSIVE:
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT: return true;
    case SQLITE_FUNCTION: return allows(second);
    case SQLITE_READ:
    case SQLITE_INSERT: // as of the other two, SQLite itself refuses all changes of its schema's own table
    case SQLITE_UPDATE:
    case SQLITE_DELETE: return isOpen(first);
    case SQLITE_PRAGMA:
        return std::any_of(std::begin(readingPragmas), std::end(readingPragmas),
                           [first](std::string_view known) { return Equal()(known, first); });
    default: return false;
    }
}

int Permissions::authorize(void* self, int action, const char* first, const char* second, const char*,
                           const char*) noexcept {
    auto* permissions = static_cast<Permissions*>(self);
    if (engine::OwnStatements::areRun() || permissions->permits(action, view(first), view(second))) {
        return SQLITE_OK;
    }
    try {
        permissions->refused_ = described(action, view(first), view(second));
    } catch (...) { // without memory for the words
        permissions->refused_.clear();
    }
    return SQLITE_DENY;
}

} // namespace orvane
