#include "host/adaptor/Adaptor.h"

#include "host/adaptor/FunctionRegistry.h"
#include "host/adaptor/VirtualTableModule.h"

#include <sqlite3.h>

namespace orvane::adaptor {

const char* moduleName() {
    return "OrvaneTable";
}

int initialise(sqlite3* database, char** errorMessage, Core* core, engine::EngineCache* cache) {
    int code = registerFunctions(database, allFunctionRecords(), cache);
    if (code == SQLITE_OK) {
        code = registerModule(database, moduleName(), *core, *cache);
    }
    if (code != SQLITE_OK) {
        *errorMessage = sqlite3_mprintf("%s", sqlite3_errmsg(database));
    }
    return code;
}

} // namespace orvane::adaptor
