#include "host/adaptor/functions/FunctionRegistry.h"

#include "host/adaptor/functions/RetiredFunctions.h"

#include <orvane/engine/EngineCache.h>
#include <orvane/engine/functions/Bounded.h>

#include <map>
#include <string>
#include <utility>

namespace orvane::adaptor {

namespace {

struct NameLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return sqlite3_stricmp(a.c_str(), b.c_str()) < 0;
    }
};

/// Takes what SpatiaLite has under the names of ours from the connection: one name has one meaning, whatever
/// the number of its arguments. Returns SQLite's code.
int removeNamesakes(sqlite3* database) {
    std::map<std::string, const RetiredFunction*, NameLess> own;
    for (const FunctionRecord& record : allFunctionRecords()) {
        for (const char* name : record.names()) {
            if (record.isRegistered()) {
                own.emplace(name, nullptr);
            }
        }
    }
    for (const RetiredFunction& function : retiredFunctions()) {
        own.emplace(function.name, &function);
    }
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(database, "Select name, narg From pragma_function_list Where Not builtin", -1,
                       &prepared, nullptr);
    std::vector<std::pair<std::string, int>> namesakes;
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        std::string name = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
        if (own.count(name) != 0) {
            namesakes.emplace_back(std::move(name), sqlite3_column_int(prepared, 1));
        }
    }
    int code = sqlite3_finalize(prepared);
    for (auto at = namesakes.begin(); at != namesakes.end() && code == SQLITE_OK; ++at) {
        const auto& [name, count] = *at;
        const RetiredFunction* retired = own.find(name)->second;
        // A number of arguments that was taken away hides one for any number.
        code = retired ? registerRetiredFunction(database, *retired, count)
                       : sqlite3_create_function(database, name.c_str(), count, SQLITE_UTF8, nullptr, nullptr,
                                                 nullptr, nullptr);
    }
    for (const RetiredFunction& function : retiredFunctions()) {
        code = code == SQLITE_OK ? registerRetiredFunction(database, function, -1) : code;
    }
    return code;
}

} // namespace

std::vector<FunctionRecord> allFunctionRecords() {
    std::vector<FunctionRecord> records;
    for (const std::span<const FunctionRecord> family :
         {arithmeticRecords(), textRecords(), dateTimeRecords(), formatRecords(), geometryRecords(),
          measureRecords(), overlayRecords(), shapingRecords(), makingRecords(), lineRecords(),
          constructorRecords(), accessRecords(), formRecords(), editingRecords(), systemRecords(),
          libraryRecords(), sqliteRecords()}) {
        records.insert(records.end(), family.begin(), family.end());
    }
    return records;
}

int registerFunctions(sqlite3* database, std::span<const FunctionRecord> records,
                      engine::EngineCache* cache) {
    for (const FunctionRecord& record : records) {
        if (!record.isRegistered()) {
            continue;
        }
        const int flags =
            record.encoding | (record.deterministic ? SQLITE_DETERMINISTIC : 0) | SQLITE_INNOCUOUS;
        for (const char* name : record.names()) {
            for (int arity = record.arity.minimum; arity <= record.arity.maximum; ++arity) {
                const int code = sqlite3_create_function_v2(
                    database, name, arity, flags, cache, record.scalar, record.step, record.final, nullptr);
                if (code != SQLITE_OK) {
                    return code;
                }
            }
        }
    }
    return SQLITE_OK;
}

int registerAllFunctions(sqlite3* database, engine::EngineCache* cache) {
    int code = removeNamesakes(database);
    code = code == SQLITE_OK ? registerFunctions(database, allFunctionRecords(), cache) : code;
    return code == SQLITE_OK ? engine::boundFunctions(database) : code;
}

} // namespace orvane::adaptor
