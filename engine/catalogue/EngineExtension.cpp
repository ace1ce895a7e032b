#include <orvane/EngineExtension.h>

#include "platform/core/Core.h"
#include "platform/di/DependencyManager.h"
#include "platform/dp/DataCatalog.h"
#include "platform/dp/Table.h"
#include "platform/log/Logger.h"
#include <orvane/Engine.h>
#include <orvane/engine/TableManagement.h>

#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QTimer>

#include <sqlite3.h>

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

EngineExtension::EngineExtension(QObject* parent) : plugin::Extension(parent), retry_(new QTimer(this)) {
    retry_->setInterval(20);
    connect(retry_, &QTimer::timeout, this, &EngineExtension::catchUp);
    dependencyManager()->addDependency(&Engine::staticMetaObject, serviceName<Engine>(), {});
    dependencyManager()->addDependency(&dp::DataCatalog::staticMetaObject, serviceName<dp::DataCatalog>(),
                                       {});
    dependencyManager()->addDependency(&Core::staticMetaObject, serviceName<Core>(),
                                       [this](QObject* provided) { core_ = qobject_cast<Core*>(provided); });
}

EngineExtension::~EngineExtension() = default;

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
    // The object may be gone again when the queued call arrives: only one that is still in the catalogue is
    // touched.
    connect(
        &catalog, &dp::DataCatalog::dataObjectAdded, this,
        [this](dp::DataObject* added) {
            const dp::DataCatalog* source = dataCatalog();
            const QList<std::shared_ptr<dp::DataObject>> objects =
                source ? source->dataObjects() : QList<std::shared_ptr<dp::DataObject>>();
            for (const auto& object : objects) {
                if (object.get() == added && !tableNames_.contains(added)) { // a rename may have been first
                    handleDataObject(added);
                    return;
                }
            }
        },
        Qt::QueuedConnection);
}

void EngineExtension::connectDataObject(const dp::DataObject& object) {
    disconnect(&object, &dp::DataObject::closeRequested, this, nullptr); // of the table made before
    tableNames_[&object] = object.name();
    connect(
        &object, &dp::DataObject::closeRequested, this,
        [this, key = &object] {
            if (const QString name = tableNames_.take(key); !name.isEmpty()) {
                unregisterName(name);
            }
            catchUp();
        },
        Qt::QueuedConnection);
}

bool EngineExtension::exec(QSqlDatabase database, const QString& sql) {
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
    // Two names may have moved on before the signal of the first came.
    if (const QString former = tableNames_.value(dobj); !former.isEmpty() && former != dobj->name()) {
        unregisterName(former);
    }
    // The other has another name by now, as a signal under way will tell.
    if (isTableOfAnother(*dobj) || !dropIfClosed(dobj->name())) {
        waiting_ << dobj;
        retry_->start();
        return;
    }
    try {
        const QString sql =
            QStringLiteral("Create Virtual Table %0 Using %1(%2);")
                .arg(tableIdentifier(database, dobj->name()), tableIdentifier(database, module),
                     formatArgs(*database.driver(), moduleArguments));
        const QSqlQuery query = database.exec(sql);
        if (!query.isActive()) {
            loggerInstance()->write(
                LogLevel::Debug, QStringLiteral("EngineExtension"), 106,
                QStringLiteral(
                    "void orvane::EngineExtension::handleDataObject(const orvane::dp::DataObject*)"),
                failureText(query));
            throw std::runtime_error(tr("Ошибка при создании виртуальной таблицы").toStdString());
        }
        waiting_.removeAll(dobj);
        connectDataObject(*dobj);
    } catch (...) {
        std::throw_with_nested(
            std::runtime_error(withClassName(tr("Регистрация модуля базы данных: %0"), *this)));
    }
}

void EngineExtension::unregisterName(QString name) {
    for (auto entry = tableNames_.begin(); entry != tableNames_.end();) {
        entry = *entry == name ? tableNames_.erase(entry) : std::next(entry);
    }
    const QSqlDatabase database = engineDatabase();
    if (exec(database, dropStatement(database, name))) {
        closedTables_.removeAll(name);
        return;
    }
    if (Engine* engine = engineService()) {
        engine->detachTable(name);
        if (!closedTables_.contains(name)) {
            closedTables_ << name;
        }
        retry_->start();
    }
}

bool EngineExtension::dropIfClosed(const QString& name) {
    const auto closed =
        std::find_if(closedTables_.begin(), closedTables_.end(),
                     [&name](const QString& other) { return other.compare(name, Qt::CaseInsensitive) == 0; });
    if (closed == closedTables_.end()) {
        return true;
    }
    const QSqlDatabase database = engineDatabase();
    QSqlQuery query(database);
    constexpr int primaryCode = 0xFF; // without what SQLite adds to tell one lock from another
    if (!query.exec(dropStatement(database, *closed)) &&
        (query.lastError().nativeErrorCode().toInt() & primaryCode) == SQLITE_LOCKED) {
        return false;
    }
    closedTables_.erase(closed);
    return true;
}

bool EngineExtension::isTableOfAnother(const dp::DataObject& object) const {
    for (auto entry = tableNames_.begin(); entry != tableNames_.end(); ++entry) {
        if (entry.key() != &object && entry->compare(object.name(), Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

void EngineExtension::catchUp() {
    const QStringList names = closedTables_;
    for (const QString& name : names) {
        if (Engine* engine = dropIfClosed(name) ? nullptr : engineService()) {
            engine->detachTable(name); // SQLite may have connected it anew
        }
    }
    const QList<const dp::DataObject*> waiting = std::exchange(waiting_, {});
    const dp::DataCatalog* catalog = dataCatalog();
    const auto objects = catalog ? catalog->dataObjects() : QList<std::shared_ptr<dp::DataObject>>();
    for (const auto& object : objects) {
        if (!waiting.contains(object.get())) {
            continue;
        }
        try {
            handleDataObject(object.get());
        } catch (const std::exception& failure) {
            loggerInstance()->write(LogLevel::Warning, QStringLiteral("EngineExtension"), __LINE__,
                                    QStringLiteral("void orvane::EngineExtension::catchUp()"),
                                    object->name() + QStringLiteral(": ") +
                                        QString::fromUtf8(failure.what()));
        }
    }
    if (closedTables_.isEmpty() && waiting_.isEmpty()) {
        retry_->stop();
    }
}

void EngineExtension::rename(QString oldName, QString newName) {
    if (oldName.isEmpty() || newName.isEmpty() ||
        QString::compare(oldName, newName, Qt::CaseInsensitive) == 0) {
        return;
    }
    renameImpl(oldName, std::move(newName));
    catchUp();
}

void EngineExtension::renameImpl(const QString& oldName, QString newName) {
    const dp::DataCatalog* catalog = dataCatalog();
    if (!catalog || !catalog->dataObject(newName)) {
        newName = dp::DataObject::makeValidObjectName(newName);
    }
    const auto renamed = catalog ? catalog->dataObject(newName) : nullptr;
    if (renamed && tableNames_.value(renamed.get()) == newName) {
        return; // an object that was renamed before its table was made
    }
    // A table that was closed while it was read may still bear one of the names: it is no table to rename.
    const bool hasTable = !closedTables_.contains(oldName, Qt::CaseInsensitive);
    if (renameRealized() && hasTable && dropIfClosed(newName)) {
        Engine* engine = engineService();
        if (engine::TableManagement* management = engine ? engine->findManagement(oldName) : nullptr) {
            management->setNewName(newName);
        }
        const QSqlDatabase database = engineDatabase();
        if (exec(database,
                 QStringLiteral("Alter Table %0 Rename To %1;")
                     .arg(tableIdentifier(database, oldName), tableIdentifier(database, newName)))) {
            for (QString& name : tableNames_) {
                name = name == oldName ? newName : name;
            }
        } else if (renamed) {
            waiting_ << renamed.get();
        }
        return;
    }
    if (hasTable) {
        // Of an object that meanwhile has the name of another it makes the table again.
        if (const auto* owner = tableNames_.key(oldName); owner && owner != renamed.get()) {
            waiting_ << owner;
        }
        unregisterName(oldName);
    }
    if (renamed) {
        handleDataObject(renamed.get());
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
