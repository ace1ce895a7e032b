#include "host/providers/datasets/SqliteConfinement.h"

#include <QString>

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::files {

const char sqlitePrelude[] = "@PRELUDE_STATEMENTS"; // without the sign GDAL warns for the other drivers
const char confiningStatement[] = "SELECT 1 WHERE '' = '' COLLATE orvane_confined";

namespace {

constexpr std::string_view confinedCollation = "orvane_confined";

/// Virtual tables over the database itself.
const char* keptModules[] = {"rtree",
                             "rtree_i32",
                             "geopoly",
                             "fts3",
                             "fts4",
                             "fts5",
                             "fts4aux",
                             "fts5vocab",
                             "json_each",
                             "json_tree",
                             "MbrCache",
                             "VirtualSpatialIndex",
                             "VirtualElementary",
                             "VirtualKNN",
                             "VirtualKNN2",
                             "VirtualBBox",
                             "VirtualFDO",
                             "VirtualGPKG",
                             "VirtualNetwork",
                             "VirtualRouting",
                             nullptr};

/// Beginnings of families of functions that compute from their arguments.
constexpr std::string_view keptFamilies[] = {"st_",      "mbr",      "filtermbr", "cast", "cvt",
                                             "geom",     "geodesic", "line",      "make", "multi",
                                             "gpkgmake", "is",       "as",        "atm_", "srid"};

/// Single ones, and those with which triggers, search tables and drivers keep a database in order.
constexpr std::string_view keptFunctions[] = {
    // Search and R-trees.
    "match", "matchinfo", "offsets", "optimize", "snippet", "highlight", "bm25", "fts5", "fts5_source_id",
    "rtreenode", "rtreedepth", "rtreecheck", "rtreealign", "regexp",
    // Upkeep by triggers and drivers.
    "checkspatialindex", "checkspatialmetadata", "invalidatelayerstatistics", "updatelayerstatistics",
    "spatialite_version", "ogr_gpkg_geometrytypeaggregate_internal", "gpkg_isassignable", "hstore_get_value",
    // Mathematics.
    "acos", "atan", "atan2", "ceil", "ceiling", "cos", "cot", "degrees", "exp", "floor", "ln", "log", "log10",
    "log2", "pi", "pow", "power", "radians", "sign", "sin", "sqrt", "stddev_pop", "stddev_samp", "tan",
    "var_pop", "var_samp",
    // Geometry.
    "addpoint", "area", "azimuth", "bdmpolyfromtext", "bdmpolyfromwkb", "bdpolyfromtext", "bdpolyfromwkb",
    "boundary", "buffer", "buildarea", "buildcirclembr", "buildmbr", "buildmbrfilter", "centroid",
    "circularity", "closestpoint", "collect", "collectionextract", "compressgeometry", "concavehull",
    "contains", "convexhull", "coorddimension", "coveredby", "covers", "crosses", "curvosityindex",
    "delaunaytriangulation", "difference", "dimension", "disjoint", "dissolvepoints", "dissolvesegments",
    "distance", "downhillheight", "endpoint", "ensureclosedrings", "envelope", "equals", "extent",
    "exteriorring", "extractmultilinestring", "extractmultipoint", "extractmultipolygon", "forceasnull",
    "frechetdistance", "geohash", "glength", "greatcirclelength", "gunion", "hausdorffdistance",
    "hexagonalgrid", "interiorringn", "intersection", "intersects", "linemerge", "longlattodms",
    "latitudefromdms", "longitudefromdms", "m", "maxdistance", "md5checksum", "mlinefromtext", "mlinefromwkb",
    "mpointfromtext", "mpointfromwkb", "mpolyfromtext", "mpolyfromwkb", "normalizelonlat", "numgeometries",
    "numinteriorring", "numinteriorrings", "numpoints", "offsetcurve", "overlaps", "perimeter",
    "pointfromtext", "pointfromwkb", "pointn", "pointonsurface", "polyfromtext", "polyfromwkb",
    "polygonfromtext", "polygonfromwkb", "polygonize", "project", "ptdistwithin", "reflectcoordinates",
    "reflectcoords", "relate", "removeextraspaces", "removepoint", "removerepeatedpoints", "ringscutatnodes",
    "rotatecoordinates", "rotatecoords", "sanitizegeometry", "scalecoordinates", "scalecoords", "segmentize",
    "selfintersections", "setendpoint", "setpoint", "setsrid", "setstartpoint", "sharedpaths",
    "shiftcoordinates", "shiftcoords", "shortestline", "simplify", "simplifypreservetopology",
    "singlesidedbuffer", "snap", "snapandsplit", "snaptogrid", "split", "splitleft", "splitright",
    "squaregrid", "startpoint", "swapcoordinates", "swapcoords", "symdifference", "togars", "touches",
    "transform", "transformxy", "transformxyz", "triangulargrid", "unaryunion", "uncompressgeometry",
    "updownheight", "uphillheight", "voronojdiagram", "within", "x", "y", "z"};

/// A function by what identifies it on a connection.
struct Function {
    std::string name; ///< in small letters, as SQLite lists it
    int arguments;
    int encoding;
};

bool isKept(std::string_view name) {
    const auto begins = [name](std::string_view family) { return name.substr(0, family.size()) == family; };
    return std::any_of(std::begin(keptFamilies), std::end(keptFamilies), begins) ||
           std::find(std::begin(keptFunctions), std::end(keptFunctions), name) != std::end(keptFunctions);
}

int encodingOf(std::string_view name) {
    return name == "utf8" ? SQLITE_UTF8 : name == "utf16be" ? SQLITE_UTF16BE : SQLITE_UTF16LE;
}

/// What is registered beyond SQLite's own and not kept. False when SQLite does not tell.
bool listForeignFunctions(sqlite3* database, std::vector<Function>& functions) {
    sqlite3_stmt* list = nullptr;
    sqlite3_prepare_v2(database, "SELECT name, narg, enc FROM pragma_function_list WHERE builtin = 0", -1,
                       &list, nullptr);
    int result = SQLITE_MISUSE;
    while (list && (result = sqlite3_step(list)) == SQLITE_ROW) {
        const auto text = [list](int column) {
            return std::string(reinterpret_cast<const char*>(sqlite3_column_text(list, column)));
        };
        if (Function function{text(0), sqlite3_column_int(list, 1), encodingOf(text(2))};
            !isKept(function.name)) {
            functions.push_back(std::move(function));
        }
    }
    return sqlite3_finalize(list) == SQLITE_OK && result == SQLITE_DONE;
}

/// Which of the libraries that register functions have done so, each all of its own: a bit for each.
unsigned librariesOf(sqlite3* database) {
    static const char* const calls[] = {"SELECT spatialite_version()", "SELECT ogr_version()",
                                        "SELECT OGR_GPKG_GeometryTypeAggregate_INTERNAL(NULL, NULL)"};
    unsigned libraries = 0;
    for (const char* call : calls) {
        sqlite3_stmt* statement = nullptr;
        const bool isThere = sqlite3_prepare_v2(database, call, -1, &statement, nullptr) == SQLITE_OK;
        sqlite3_finalize(statement);
        libraries = libraries * 2 + (isThere ? 1 : 0);
    }
    return libraries;
}

/// The same for all connections with the same libraries: to list them takes longer than to open the file.
/// Null when SQLite does not tell.
const std::vector<Function>* foreignFunctions(sqlite3* database) {
    static std::mutex mutex;
    static std::map<unsigned, std::vector<Function>> listed;
    const unsigned libraries = librariesOf(database);
    const std::lock_guard lock(mutex);
    if (const auto found = listed.find(libraries); found != listed.end()) {
        return &found->second;
    }
    std::vector<Function> functions;
    return listForeignFunctions(database, functions) ? &(listed[libraries] = std::move(functions)) : nullptr;
}

bool removeForeignFunctions(sqlite3* database) try {
    const auto* functions = foreignFunctions(database);
    return functions &&
           std::all_of(functions->begin(), functions->end(), [database](const Function& function) {
               return sqlite3_create_function_v2(database, function.name.c_str(), function.arguments,
                                                 function.encoding, nullptr, nullptr, nullptr, nullptr,
                                                 nullptr) == SQLITE_OK;
           });
} catch (const std::bad_alloc&) { // below is SQLite
    return false;
}

int compareBytes(void*, int firstSize, const void* first, int secondSize, const void* second) {
    return std::string_view(static_cast<const char*>(first), static_cast<std::size_t>(firstSize))
        .compare({static_cast<const char*>(second), static_cast<std::size_t>(secondSize)});
}

/// SQLite asks for a collation that it does not know while it prepares a statement: the one moment after
/// everything is registered and before anything runs in which functions can be taken away.
void confine(void*, sqlite3* database, int, const char* collation) {
    if (collation != confinedCollation) {
        return;
    }
    sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
    const bool isConfined =
        sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr) == SQLITE_OK &&
        sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr) == SQLITE_OK &&
        sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0, nullptr) == SQLITE_OK &&
        removeForeignFunctions(database) && sqlite3_drop_modules(database, keptModules) == SQLITE_OK;
    if (isConfined) { // or else the statement fails for want of the collation
        sqlite3_create_collation(database, collation, SQLITE_UTF8, nullptr, compareBytes);
    }
}

int& confiningScopes() {
    static thread_local int scopes = 0;
    return scopes;
}

int prepareConnection(sqlite3* database, const char**, const sqlite3_api_routines*) {
    return confiningScopes() > 0 ? sqlite3_collation_needed(database, nullptr, confine) : SQLITE_OK;
}

} // namespace

void beginConfiningDatabases() {
    ++confiningScopes();
    // Each time: SpatiaLite forgets all such functions, its own and others', whenever a connection ends.
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(prepareConnection));
}

void endConfiningDatabases() {
    --confiningScopes();
}

bool saysUnconfined(const QString& error) {
    return error.contains(QLatin1String(confiningStatement));
}

} // namespace orvane::files
