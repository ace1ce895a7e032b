#include "host/adaptor/Adaptor.h"

#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/adaptor/module/RelationCollations.h"
#include "host/adaptor/module/SeriesModule.h"
#include "host/adaptor/module/VirtualTableModule.h"
#include "platform/core/Core.h"
#include <orvane/Engine.h>

#include <sqlite3.h>

namespace orvane::adaptor {

namespace {

void allowFunctions(const Core& core) {
    QStringList names;
    for (const FunctionRecord& record : allFunctionRecords()) {
        for (const char* name : record.names()) {
            names += QString::fromLatin1(name);
        }
    }
    if (auto* engine = core.findService<Engine>()) {
        engine->allowFunctions(names);
    }
}

} // namespace

const char* moduleName() {
    return "OrvaneTable";
}

int initialise(sqlite3* database, char** errorMessage, Core* core, engine::EngineCache* cache) {
    // SQLite would take a misspelt column name in quotes for a text and answer with that text.
    int code = sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    if (code == SQLITE_OK) {
        code = registerAllFunctions(database, cache);
        allowFunctions(*core);
    }
    if (code == SQLITE_OK) {
        code = offerRelations(database, *cache);
    }
    if (code == SQLITE_OK) {
        code = registerSeries(database);
    }
    if (code == SQLITE_OK) {
        code = registerModule(database, moduleName(), *core, *cache);
    }
    if (code != SQLITE_OK) {
        *errorMessage = sqlite3_mprintf("%s", sqlite3_errmsg(database));
    }
    return code;
}

} // namespace orvane::adaptor
