#pragma once

#include <orvane/engine/Export.h>

#include <QString>

#include <memory>

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::engine {

/// How the engine reaches back into the module behind a virtual table. The module registers one per table
/// with Engine::registerManagement; the engine owns it. Used from the engine's thread, except coordSystem,
/// which SQL functions may call while a statement runs.
class ORVANE_ENGINE_EXPORT TableManagement {
public:
    TableManagement();
    virtual ~TableManagement();
    TableManagement(const TableManagement&) = delete;
    TableManagement& operator=(const TableManagement&) = delete;

    /// The module lets go of the table.
    virtual void detach() = 0;
    /// The exact name of the virtual table. A management without a name is not registered.
    virtual QString tableName() const;
    /// The name that a rename under way gives the table; empty when there is none.
    virtual QString newName() const;
    /// Announces the name before the rename; the engine calls this.
    virtual void setNewName(QString name);
    /// The attribute indices of the table were dropped.
    virtual void indicesCleared() = 0;
    /// The system in which the table's geometries are stored; null when it has none.
    virtual std::shared_ptr<cs::CoordSystem> coordSystem() = 0;

private:
    QString newName_;
};

} // namespace orvane::engine
