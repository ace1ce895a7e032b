#include "host/adaptor/functions/FunctionRegistry.h"

#include <orvane/engine/EngineCache.h>
#include <orvane/engine/functions/Bounded.h>

namespace orvane::adaptor {

std::vector<FunctionRecord> allFunctionRecords() {
    std::vector<FunctionRecord> records;
    for (const std::span<const FunctionRecord> family :
         {arithmeticRecords(), textRecords(), dateTimeRecords(), formatRecords(), geometryRecords()}) {
        records.insert(records.end(), family.begin(), family.end());
    }
    return records;
}

int registerFunctions(sqlite3* database, std::span<const FunctionRecord> records,
                      engine::EngineCache* cache) {
    for (const FunctionRecord& record : records) {
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
    const int code = registerFunctions(database, allFunctionRecords(), cache);
    return code == SQLITE_OK ? engine::boundFunctions(database) : code;
}

} // namespace orvane::adaptor
