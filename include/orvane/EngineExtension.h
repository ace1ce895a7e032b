#pragma once

#include "platform/plugin/Extension.h"
#include <orvane/engine/Export.h>

#include <QList>
#include <QSqlDatabase>
#include <QVariant>

#include <memory>

class QSqlDriver;

namespace orvane {

class Core;
class Engine;
class VirtualTables;

namespace dp {
class DataCatalog;
class DataObject;
class Table;
} // namespace dp

/// Keeps the engine database in step with the data catalogue: every data object that the derived class serves
/// has a virtual table of its name. A provider plug-in derives from it, answers virtualTableModule, and calls
/// linkDataCatalog once its services are there. All work happens on the extension's own thread; the
/// catalogue's signals arrive queued.
///
/// A table that a statement reads cannot be dropped. Closing it lets go of the data object at once: the
/// statement keeps the rows it has begun, a new scan fails with the table's name, and the table goes, or
/// comes back for an object opened meanwhile, by whichever extension, when the statement is done. After a
/// transaction was rolled back the tables are made to agree with the catalogue again. Both happen from the
/// event loop. Tables that other extensions made are left alone.
class ORVANE_ENGINE_EXPORT EngineExtension : public plugin::Extension {
    Q_OBJECT
public:
    explicit EngineExtension(QObject* parent);
    ~EngineExtension() override;

    /// Each null (or an invalid handle) until the core provides the service.
    Engine* engineService() const;
    QSqlDatabase engineDatabase() const;
    dp::DataCatalog* dataCatalog() const;

    /// Makes the tables of all objects in the catalogue and follows it from then on. Throws what
    /// handleDataObject throws; the first failure ends the loop.
    void linkDataCatalog();

    /// Runs a statement. A failure is logged as a warning and answered with false.
    bool exec(QSqlDatabase database, const QString& sql);

    /// Whether a module argument holds a character besides letters, digits, "_", ".", "/" and white space.
    static bool moduleArgNeedsFormatting(const QString& argument);
    /// A module argument as SQL: plain strings as they are, anything else as the driver writes its literal.
    static QString formatArg(const QSqlDriver& driver, const QVariant& value);
    /// Several, separated by commas.
    static QString formatArgs(const QSqlDriver& driver, const QList<QVariant>& values);

    /// Lets the table of the old name follow its object to the new one, made valid where no object has it: by
    /// Alter Table where renameRealized, else by a new table. Failures are logged, but for what
    /// handleDataObject throws.
    void renameImpl(const QString& oldName, QString newName);
    /// Drops the table's virtual table and makes it afresh with the module's current arguments.
    void deepReset(const std::shared_ptr<dp::Table>& table);

protected:
    /// The module that serves an object, with its arguments appended; an empty name when this extension does
    /// not serve it.
    virtual QString virtualTableModule(const dp::DataObject* object, QList<QVariant>& moduleArguments) = 0;
    /// Drops the table when the object asks its users to let go. Called once its table is made.
    virtual void connectDataObject(const dp::DataObject& object);
    /// Makes tables for objects that are added from now on.
    virtual void connectCatalog(dp::DataCatalog& catalog);
    /// Whether the module can rename a virtual table with Alter Table.
    virtual bool renameRealized() const;

    /// Null until the core provides itself.
    Core* core() const { return core_; }

protected Q_SLOTS:
    /// Makes the virtual table of an object. Throws std::logic_error when the derived class fails,
    /// std::runtime_error when the table cannot be made; the cause is nested.
    void handleDataObject(const orvane::dp::DataObject* dobj);
    /// Drops the table of that name; one that is still read lets go of its object and goes later.
    void unregisterName(QString name);
    /// renameImpl for names that differ in more than letter case; an empty one is ignored.
    void rename(QString oldName, QString newName);

private:
    VirtualTables* tables() const;
    bool isInCatalog(const dp::DataObject* object) const;
    /// Makes the tables of the objects that wait for their names.
    void makeWaiting();
    void renameTable(const dp::DataObject* object, const QString& oldName, const QString& newName);

    Core* core_ = nullptr;
};

} // namespace orvane
