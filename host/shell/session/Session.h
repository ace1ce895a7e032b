#pragma once

#include "host/shell/messages/Names.h"
#include "host/shell/session/Options.h"

#include "platform/core/Core.h"
#include "platform/core/TypedSettings.h"
#include "platform/dp/DataCatalogWithSelection.h"
#include "platform/dp/Table.h"

#include <memory>
#include <vector>

namespace orvane {
class Engine;
class EngineExtension;
} // namespace orvane
namespace orvane::files {
class ResultRows;
}

namespace orvane::shell {

/// The engine with the tables of the user's files. Used from the main thread.
class Session {
public:
    /// Sets up an engine without tables. Throws std::runtime_error when that fails.
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Opens what the command line names and sets the selection. Throws UsageError for a file that does not
    /// open, a name that is taken, and a selection in no table.
    void open(const Options& options);
    /// Opens every layer of a file under its name. Throws UsageError.
    void openFile(const QString& path);
    /// Opens one layer under a name. Throws UsageError.
    void openTable(const TableSource& source);
    void select(const SelectionSource& source);
    /// Selects what a query finds. Throws UsageError.
    void select(const std::string& query);
    /// Makes a result an open table. Throws std::runtime_error: name taken, no room.
    void addResult(const QString& name, files::ResultRows& rows);
    /// The file that a table comes from, as the user named it; empty for a result.
    static QString sourceOf(const dp::DataObject& table);
    /// False when there is no such table.
    bool closeTable(const QString& name);

    Engine& engine() const { return *engine_; }
    sqlite3* database() const { return database_; }
    dp::DataCatalogWithSelection& catalog() { return catalog_; }
    Names names() const { return {*engine_, catalog_}; }

private:
    void addProvider(std::unique_ptr<EngineExtension> provider);
    void apply(const Options& options);
    std::vector<std::shared_ptr<dp::Table>> openLayers(const QString& source) const;
    void makeVirtualTables();

    dp::DataCatalogWithSelection catalog_; ///< outlives the engine, whose tables look into it
    std::shared_ptr<TypedSettings> settings_ =
        std::make_shared<TypedSettings>(); ///< a service of the process
    Core core_;
    Engine* engine_ = nullptr; ///< a child of the core
    sqlite3* database_ = nullptr;
    std::vector<std::unique_ptr<EngineExtension>> providers_;
    bool trustsReferences_ = false; ///< of the files to open
};

} // namespace orvane::shell
