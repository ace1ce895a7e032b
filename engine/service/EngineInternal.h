#pragma once

#include "engine/catalogue/VirtualTables.h"
#include "engine/service/Permissions.h"
#include <orvane/Engine.h>
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/EngineIndices.h>
#include <orvane/engine/LocaleOrder.h>
#include <orvane/engine/TableManagement.h>

#include <QCollator>

#include <map>
#include <memory>

namespace orvane {

namespace sql {
class SqlRuntime;
}

/// The engine's state. It is the cache as well, so that the SQL functions reach both through one pointer. The
/// members go in reverse order: managements before the connection that their tables live in.
class Engine::Internal : public engine::EngineCache {
public:
    /// Opens the database and sets it up. `owner` becomes the parent of the SQL runtime.
    explicit Internal(Engine* owner);
    ~Internal() override;

    /// Takes out of the connection, which may outlive the engine, whatever leads back to it: the virtual
    /// tables, the functions and the modules. Locale stays, without what the engine keeps for it.
    void letGoOfConnection();

    std::shared_ptr<cs::CoordSystem> tableCS(const QString& tableName) override;

    const QSqlDatabase& database() const { return database_; }
    sqlite3* sqliteHandle() const;
    sql::SqlRuntime* runtime() const { return runtime_; }
    std::map<QString, std::unique_ptr<engine::EngineIndices>>& tableIndices() { return tableIndices_; }
    std::map<QString, std::unique_ptr<engine::TableManagement>>& managements() { return managements_; }

    VirtualTables& virtualTables() { return *virtualTables_; }
    Permissions& permissions() { return *permissions_; }

private:
    struct SpatialiteCleanUp {
        void operator()(void* connection) const;
    };

    static int localeCollation(void* userData, int length1, const void* text1, int length2,
                               const void* text2);
    static int localeCollationUtf8(void* userData, int length1, const void* text1, int length2,
                                   const void* text2);

    void initialiseSpatialite();
    void registerCollation(Internal* userData);

    QSqlDatabase database_;
    QCollator collator_;
    std::unique_ptr<engine::LocaleOrder> localeOrder_; ///< made when texts are first compared
    std::unique_ptr<void, SpatialiteCleanUp> spatialiteConnection_;
    sql::SqlRuntime* runtime_ = nullptr;
    std::unique_ptr<Permissions> permissions_;
    std::unique_ptr<VirtualTables> virtualTables_;
    std::map<QString, std::unique_ptr<engine::EngineIndices>> tableIndices_;
    std::map<QString, std::unique_ptr<engine::TableManagement>> managements_;
};

} // namespace orvane
