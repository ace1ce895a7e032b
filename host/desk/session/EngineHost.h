#pragma once

#include "host/desk/session/Tables.h"

#include <platform/core/Core.h>
#include <platform/core/TypedSettings.h>
#include <platform/dp/DataCatalogWithSelection.h>
#include <platform/dp/Table.h>

#include <functional>
#include <memory>

struct sqlite3;

namespace orvane {
class Engine;
namespace files {
class FilesExtension;
}
} // namespace orvane

namespace orvane::desk {

/// What went wrong, from the outermost account to the cause.
QString reasonOf(const std::exception& failure);

/// The engine with the tables of the user's files. Made, used and destroyed on the thread of the engine.
class EngineHost {
public:
    /// Sets up an engine without tables. `report` is told, on the same thread, what went wrong when tables
    /// were made or dropped. Throws std::runtime_error.
    explicit EngineHost(std::function<void(const QString& failure)> report);
    ~EngineHost();
    EngineHost(const EngineHost&) = delete;
    EngineHost& operator=(const EngineHost&) = delete;

    /// Opens every layer of a file; answers their keys. Throws std::runtime_error.
    QVector<quint64> open(const QString& source);
    /// False when the table is closed already.
    bool close(quint64 key);
    /// Throws std::runtime_error for a name that is taken or that no table can have.
    void rename(quint64 key, const QString& name);
    /// Lets the engine follow the catalogue.
    void settle();

    TableInfos tables() const;
    std::shared_ptr<dp::Table> table(quint64 key) const;
    QStringList functions() const;

    Engine& engine() const { return *engine_; }
    sqlite3* database() const;
    dp::DataCatalogWithSelection& catalog() { return catalog_; }

private:
    std::function<void(const QString&)> report_;
    dp::DataCatalogWithSelection catalog_; ///< outlives the engine, whose tables look into it
    std::shared_ptr<TypedSettings> settings_ = std::make_shared<TypedSettings>(); ///< of the process
    Core core_;
    Engine* engine_ = nullptr; ///< a child of the core
    std::unique_ptr<files::FilesExtension> files_;
};

} // namespace orvane::desk
