#include "engine/translation/ScratchDatabase.h"

#include <stdexcept>

namespace orvane::tests {

namespace {

constexpr const char* schema = R"(
Create Table t (a, b, c, x, y, z, name, part, entire, "a b", "a ""quoted"" name", a1$2, Имя, "🚲", "x🚲",
    cd750f8a9a2b4fac9b9b05eb53795d97, d39f65c319974aa198a899a89b1240c7);
Create Table u (a, b, c);
Create Table v (a, b, c);
Create Table onecolumn (a);
Create Table wide (a, b, c, d, e, f, g, h, i, j, k, l, m);
Create Table cities (geonameid, name, country, feature, population, cd750f8a9a2b4fac9b9b05eb53795d97);
Create Table countries (iso_a2, name_long, continent, pop, area_km2, cd750f8a9a2b4fac9b9b05eb53795d97);
Create Table "odd table" ("a b", "a ""quoted"" name");
Create Table "1st table" (a1$2);
Create Table Города (Имя, "имя с пробелом");
Create Table words (Date, Time, Type, Part, Entire, Value, "First", "Last", "Row", "Rows", "Filter", "Over", "Key",
    "Desc", "order", "group", "from", objects, geometry, styles, "select", "Within", "update", "insert", "delete",
    "values");
)";

constexpr const char* functionNames[] = {
    "xor",         "concat",           "divide",         "quotient",
    "involution",  "ContainsCentroid", "CentroidWithin", "ST_Within",
    "ST_Contains", "ST_Intersects",    "ObjectArea",     "ObjectPerimeter",
    "RoundTo",     "MakeValidGeo",     "Left",           "Right",
    "Mod",         "Contains",         "Buffer",         "Centroid"};

void nothing(sqlite3_context*, int, sqlite3_value**) {}

int compare(void*, int, const void*, int, const void*) {
    return 0;
}

} // namespace

ScratchDatabase::ScratchDatabase() {
    sqlite3* database = nullptr;
    sqlite3_open(":memory:", &database);
    database_.reset(database);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr); // a quoted name is a name, never a text
    for (const char* name : {"Locale", "my order"}) {
        sqlite3_create_collation(database, name, SQLITE_UTF8, nullptr, compare);
    }
    for (const char* name : functionNames) {
        sqlite3_create_function(database, name, -1, SQLITE_UTF8, nullptr, nothing, nullptr, nullptr);
    }
    if (sqlite3_exec(database, schema, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

std::string ScratchDatabase::prepareError(const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(handle(), text.c_str(), -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return code == SQLITE_OK ? std::string() : sqlite3_errmsg(handle());
}

} // namespace orvane::tests
