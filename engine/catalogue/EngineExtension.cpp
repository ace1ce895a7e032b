#include <orvane/EngineExtension.h>

#include "engine/catalogue/VirtualTables.h"
#include "platform/core/Core.h"
#include "platform/di/DependencyManager.h"
#include "platform/dp/DataCatalog.h"
#include "platform/dp/Table.h"
#include "platform/log/Logger.h"
#include <orvane/Engine.h>
#include <orvane/engine/OwnStatements.h>
#include <orvane/engine/TableManagement.h>

#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

namespace orvane {

namespace {

template<class Service>
QString serviceName() {
    return QString::fromLatin1(Service::staticMetaObject.className());
}

QString tableIdentifier(const QSqlDatabase& database, const QString& name) {
    return database.driver()->escapeIdentifier(name, QSqlDriver::TableName);
}

QString dropStatement(const QSqlDatabase& database, const QString& name) {
    return QStringLiteral("Drop Table If Exists %0;").arg(tableIdentifier(database, name));
}

QString failureText(const QSqlQuery& query) {
    return query.lastQuery() + QStringLiteral(": ") + query.lastError().text();
}

/// "name %0" with the class name of the extension, as the failures of handleDataObject report it.
std::string withClassName(const QString& text, const QObject& extension) {
    return text.arg(QString::fromLatin1(extension.metaObject()->className())).toStdString();
}

} // namespace

EngineExtension::EngineExtension(QObject* parent) : plugin::Extension(parent) {
    dependencyManager()->addDependency(&Engine::staticMetaObject, serviceName<Engine>(), {});
    dependencyManager()->addDependency(&dp::DataCatalog::staticMetaObject, serviceName<dp::DataCatalog>(),
                                       {});
    dependencyManager()->addDependency(&Core::staticMetaObject, serviceName<Core>(),
                                       [this](QObject* provided) { core_ = qobject_cast<Core*>(provided); });
}

EngineExtension::~EngineExtension() {
    if (VirtualTables* known = tables()) {
        known->forget(this);
    }
}

VirtualTables* EngineExtension::tables() const {
    const Engine* engine = engineService();
    return engine ? &engine->virtualTables() : nullptr;
}

Engine* EngineExtension::engineService() const {
    return qobject_cast<Engine*>(dependencyManager()->getService(serviceName<Engine>()));
}

QSqlDatabase EngineExtension::engineDatabase() const {
    const Engine* engine = engineService();
    return engine ? engine->engineDatabase() : QSqlDatabase();
}

dp::DataCatalog* EngineExtension::dataCatalog() const {
    return qobject_cast<dp::DataCatalog*>(dependencyManager()->getService(serviceName<dp::DataCatalog>()));
}

bool EngineExtension::renameRealized() const {
    return false;
}

void EngineExtension::linkDataCatalog() {
    dp::DataCatalog* catalog = dataCatalog();
    if (!catalog) {
        return;
    }
    const QList<std::shared_ptr<dp::DataObject>> objects = catalog->dataObjects();
    for (const auto& object : objects) {
        handleDataObject(object.get());
    }
    connectCatalog(*catalog);
}

void EngineExtension::connectCatalog(dp::DataCatalog& catalog) {
    static const int pointerType = qRegisterMetaType<orvane::dp::DataObject*>("orvane::dp::DataObject*");
    Q_UNUSED(pointerType)
    // The object may be gone again when the queued call arrives, and a rename may have been first.
    connect(
        &catalog, &dp::DataCatalog::dataObjectAdded, this,
        [this](dp::DataObject* added) {
            const VirtualTables* known = tables();
            if (isInCatalog(added) && !(known && known->find(added))) {
                handleDataObject(added);
            }
        },
        Qt::QueuedConnection);
}

bool EngineExtension::isInCatalog(const dp::DataObject* object) const {
    const dp::DataCatalog* catalog = dataCatalog();
    const auto objects = catalog ? catalog->dataObjects() : QList<std::shared_ptr<dp::DataObject>>();
    return std::any_of(objects.begin(), objects.end(),
                       [object](const auto& each) { return each.get() == object; });
}

void EngineExtension::connectDataObject(const dp::DataObject& object) {
    disconnect(&object, &dp::DataObject::closeRequested, this, nullptr); // of the table made before
    connect(
        &object, &dp::DataObject::closeRequested, this,
        [this, key = &object] {
            VirtualTables* known = tables();
            const VirtualTables::Table* table = known ? known->find(key) : nullptr;
            if (table && table->isMade()) {
                unregisterName(QString(table->name));
            }
            if (known) {
                known->forget(key);
                known->settle();
            }
        },
        Qt::QueuedConnection);
}

bool EngineExtension::exec(QSqlDatabase database, const QString& sql) {
    const engine::OwnStatements own;
    QSqlQuery query(database);
    if (query.exec(sql)) {
        return true;
    }
    loggerInstance()->write(
        LogLevel::Warning, QStringLiteral("EngineExtension"), 125,
        QStringLiteral("bool orvane::EngineExtension::exec(QSqlDatabase, const QString&)"),
        failureText(query));
    return false;
}

bool EngineExtension::moduleArgNeedsFormatting(const QString& argument) {
    static const QRegularExpression special(QStringLiteral("[^[:alnum:]_\\.\\/[:space:]]"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return special.match(argument).hasMatch();
}

QString EngineExtension::formatArg(const QSqlDriver& driver, const QVariant& value) {
    if (value.type() == QVariant::String && !value.isNull() && !moduleArgNeedsFormatting(value.toString())) {
        return value.toString();
    }
    QSqlField field(QString(), value.type());
    field.setValue(value);
    return driver.formatValue(field, false);
}

QString EngineExtension::formatArgs(const QSqlDriver& driver, const QList<QVariant>& values) {
    QStringList texts;
    for (const QVariant& value : values) {
        texts << formatArg(driver, value);
    }
    return texts.join(QLatin1Char(','));
}

void EngineExtension::handleDataObject(const dp::DataObject* dobj) {
    const QSqlDatabase database = engineDatabase();
    QList<QVariant> moduleArguments;
    QString module;
    try {
        const std::shared_ptr<dp::DataObject> object = dobj->underlyingObject();
        module = virtualTableModule(object.get(), moduleArguments);
    } catch (...) {
        std::throw_with_nested(std::logic_error(withClassName(tr("Обработка расширения %0"), *this)));
    }
    if (module.isEmpty()) {
        return;
    }
    VirtualTables* known = tables();
    if (known) {
        connect(known, &VirtualTables::namesFreed, this, &EngineExtension::makeWaiting, Qt::UniqueConnection);
        // Two names may have moved on before the signal of the first came.
        if (const auto* former = known->find(dobj);
            former && former->isMade() && former->name != dobj->name()) {
            unregisterName(QString(former->name));
        }
        if (!known->isFree(dobj->name(), dobj)) {
            known->wait(this, dobj);
            connectDataObject(*dobj);
            return;
        }
    }
    try {
        const QString sql =
            QStringLiteral("Create Virtual Table %0 Using %1(%2);")
                .arg(tableIdentifier(database, dobj->name()), tableIdentifier(database, module),
                     formatArgs(*database.driver(), moduleArguments));
        const engine::OwnStatements own;
        const QSqlQuery query = database.exec(sql);
        if (!query.isActive()) {
            loggerInstance()->write(
                LogLevel::Debug, QStringLiteral("EngineExtension"), 106,
                QStringLiteral(
                    "void orvane::EngineExtension::handleDataObject(const orvane::dp::DataObject*)"),
                failureText(query));
            throw std::runtime_error(tr("Ошибка при создании виртуальной таблицы").toStdString());
        }
        if (known) {
            known->made(this, dobj, dobj->name());
        }
        connectDataObject(*dobj);
    } catch (...) {
        std::throw_with_nested(
            std::runtime_error(withClassName(tr("Регистрация модуля базы данных: %0"), *this)));
    }
}

void EngineExtension::unregisterName(QString name) {
    if (VirtualTables* known = tables()) {
        known->close(name);
    }
    const QSqlDatabase database = engineDatabase();
    Engine* engine = exec(database, dropStatement(database, name)) ? nullptr : engineService();
    if (engine) {
        engine->detachTable(name);
    }
}

void EngineExtension::makeWaiting() {
    VirtualTables* known = tables();
    const auto waiting = known ? known->waiting(this) : std::vector<const dp::DataObject*>();
    for (const dp::DataObject* object : waiting) {
        try {
            if (isInCatalog(object)) {
                handleDataObject(object);
                continue;
            }
        } catch (const std::exception& failure) {
            loggerInstance()->write(LogLevel::Warning, QStringLiteral("EngineExtension"), __LINE__,
                                    QStringLiteral("void orvane::EngineExtension::makeWaiting()"),
                                    object->name() + QStringLiteral(": ") +
                                        QString::fromUtf8(failure.what()));
        }
        known->forget(object);
    }
}

void EngineExtension::rename(QString oldName, QString newName) {
    if (oldName.isEmpty() || newName.isEmpty() ||
        QString::compare(oldName, newName, Qt::CaseInsensitive) == 0) {
        return;
    }
    renameImpl(oldName, std::move(newName));
    if (VirtualTables* known = tables()) {
        known->settle();
    }
}

void EngineExtension::renameImpl(const QString& oldName, QString newName) {
    const dp::DataCatalog* catalog = dataCatalog();
    if (!catalog || !catalog->dataObject(newName)) {
        newName = dp::DataObject::makeValidObjectName(newName);
    }
    VirtualTables* known = tables();
    const auto renamed = catalog ? catalog->dataObject(newName) : nullptr;
    // The object tells which table is its own, the name only when the object has moved on or is gone.
    const VirtualTables::Table* found = known ? known->find(renamed.get()) : nullptr;
    if (known && (!found || !found->isMade())) {
        found = known->find(oldName);
    }
    if (!found || !found->isMade()) {
        if (renamed) {
            handleDataObject(renamed.get());
        }
        return;
    }
    const VirtualTables::Table table = *found;
    if (table.maker != this || table.name == newName) {
        return;
    }
    if (renameRealized() && known->isFree(newName, table.object)) {
        renameTable(table.object, table.name, newName);
        return;
    }
    unregisterName(table.name);
    if (table.object != renamed.get()) {
        known->wait(this, table.object); // it has yet another name by now
    }
    if (renamed) {
        handleDataObject(renamed.get());
    }
}

void EngineExtension::renameTable(const dp::DataObject* object, const QString& oldName,
                                  const QString& newName) {
    const QSqlDatabase database = engineDatabase();
    engine::TableManagement* management = engineService()->findManagement(oldName);
    if (management) {
        management->setNewName(newName);
    }
    if (exec(database, QStringLiteral("Alter Table %0 Rename To %1;")
                           .arg(tableIdentifier(database, oldName), tableIdentifier(database, newName)))) {
        tables()->renamed(object, newName);
    } else if ((management = engineService()->findManagement(oldName))) {
        management->setNewName(QString()); // it keeps the table that it has
    }
}

void EngineExtension::deepReset(const std::shared_ptr<dp::Table>& table) {
    const QString name = table->name();
    if (Engine* engine = engineService()) {
        engine->detachTable(name);
    }
    unregisterName(name);
    const dp::DataCatalog* catalog = dataCatalog();
    if (const auto object = catalog ? catalog->dataObject(name) : nullptr) {
        handleDataObject(object.get());
    }
}

} // namespace orvane
