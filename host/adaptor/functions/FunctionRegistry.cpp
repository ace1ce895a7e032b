#include "host/adaptor/functions/FunctionRegistry.h"

#include "host/adaptor/functions/RetiredFunctions.h"

#include <orvane/engine/EngineCache.h>
#include <orvane/engine/functions/Bounded.h>

#include <algorithm>
#include <array>
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

/// In the order of the reference.
auto families() {
    return std::array{arithmeticRecords(), textRecords(),    dateTimeRecords(),    formatRecords(),
                      geometryRecords(),   measureRecords(), overlayRecords(),     shapingRecords(),
                      makingRecords(),     lineRecords(),    constructorRecords(), accessRecords(),
                      formRecords(),       editingRecords(), systemRecords(),      libraryRecords(),
                      sqliteRecords()};
}

/// What becomes of a name.
struct Own {
    const RetiredFunction* retired = nullptr;
    std::vector<Arity> arities; ///< of what is registered under it

    bool takes(int count) const {
        return std::any_of(arities.begin(), arities.end(), [count](const Arity& arity) {
            return arity.minimum <= count && count <= arity.maximum;
        });
    }
};

/// Takes what SpatiaLite has under the names of ours from the connection, as far as ours do not replace it:
/// one name has one meaning, whatever the number of its arguments. Returns SQLite's code.
int removeNamesakes(sqlite3* database, std::span<const FunctionRecord> records) {
    std::map<std::string, Own, NameLess> own;
    for (const FunctionRecord& record : records) {
        for (const char* name : record.names()) {
            if (record.isRegistered()) {
                own[name].arities.push_back(record.arity);
            }
        }
    }
    for (const RetiredFunction& function : retiredFunctions()) {
        own[function.name].retired = &function;
    }
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(database, "Select name, narg From pragma_function_list Where Not builtin", -1,
                       &prepared, nullptr);
    std::vector<std::pair<std::string, int>> namesakes;
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        std::string name = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
        const int count = sqlite3_column_int(prepared, 1);
        if (const auto known = own.find(name); known != own.end() && !known->second.takes(count)) {
            namesakes.emplace_back(std::move(name), count);
        }
    }
    int code = sqlite3_finalize(prepared);
    for (auto at = namesakes.begin(); at != namesakes.end() && code == SQLITE_OK; ++at) {
        const auto& [name, count] = *at;
        const RetiredFunction* retired = own[name].retired;
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
    for (const std::span<const FunctionRecord> family : families()) {
        records.insert(records.end(), family.begin(), family.end());
    }
    return records;
}

const FunctionRecord* findScalar(const char* name, int count) {
    for (const std::span<const FunctionRecord> family : families()) {
        for (const FunctionRecord& record : family) {
            if (record.scalar != nullptr && record.arity.minimum <= count && count <= record.arity.maximum &&
                record.isNamed(name)) {
                return &record;
            }
        }
    }
    return nullptr;
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
                const int code =
                    record.inverse
                        ? sqlite3_create_window_function(database, name, arity, flags, cache, record.step,
                                                         record.final, record.value, record.inverse, nullptr)
                        : sqlite3_create_function_v2(database, name, arity, flags, cache, record.scalar,
                                                     record.step, record.final, nullptr);
                if (code != SQLITE_OK) {
                    return code;
                }
            }
        }
    }
    return SQLITE_OK;
}

int registerAllFunctions(sqlite3* database, engine::EngineCache* cache) {
    const std::vector<FunctionRecord> records = allFunctionRecords();
    int code = removeNamesakes(database, records);
    code = code == SQLITE_OK ? registerFunctions(database, records, cache) : code;
    return code == SQLITE_OK ? engine::boundFunctions(database) : code;
}

} // namespace orvane::adaptor
