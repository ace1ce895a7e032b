#include <orvane/Engine.h>

#include "engine/service/EngineInternal.h"

#include "platform/core/Core.h"
#include "platform/core/SqliteException.h"
#include "platform/dp/Table.h"
#include "platform/log/Logger.h"
#include "platform/plugin/ExtensionConsumer.h"
#include "platform/plugin/PluginManager.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/EngineIndicesFactory.h>
#include <orvane/engine/EngineIndicesSetup.h>

#include <QMutex>
#include <QPointer>

#include <sqlite3.h>

namespace orvane {

namespace {

/// Owns an error text that SQLite allocated.
class SqliteText {
public:
    SqliteText() = default;
    ~SqliteText() { sqlite3_free(text_); }
    SqliteText(const SqliteText&) = delete;
    SqliteText& operator=(const SqliteText&) = delete;

    char** address() { return &text_; }
    QString toString() const { return QString::fromUtf8(text_); }

private:
    char* text_ = nullptr;
};

QString loadFailure(const QString& name, const SqliteText& reason) {
    // One pass over the pattern: a marker inside the name or the reason stays as it is.
    return Engine::tr("Загрузка расширения %0: %1").arg(name, reason.toString());
}

} // namespace

Engine* Engine::load(Core* core) {
    const QString name = QString::fromLatin1(staticMetaObject.className());
    if (auto* service = qobject_cast<Engine*>(core->findService(&staticMetaObject, name))) {
        return service;
    }
    static QMutex mutex;
    static QPointer<Engine> instance; // goes with the core that was its parent
    const QMutexLocker lock(&mutex);
    if (!instance) {
        instance = new Engine(core);
    }
    core->registerService(instance);
    core->pluginManager()->registerExtensionConsumer(
        std::make_unique<plugin::ExtensionConsumerAdapter<geometry::ResemblanceExtension, Engine>>(instance));
    return instance;
}

Engine::Engine(QObject* parent) : QObject(parent), internal_(std::make_shared<Internal>(this)) {}

Engine::~Engine() {
    try {
        internal_->letGoOfConnection();
    } catch (const std::exception& failure) {
        loggerInstance()->write(LogLevel::Warning, QStringLiteral("Engine"), __LINE__,
                                QStringLiteral("orvane::Engine::~Engine()"),
                                QString::fromUtf8(failure.what()));
    }
}

QSqlDatabase Engine::engineDatabase() const {
    return internal_->database();
}

engine::EngineCache* Engine::cache() const {
    return internal_.get();
}

void Engine::registerExtension(geometry::ResemblanceExtension* extension) {
    internal_->addResemblanceExtension(extension);
}

void Engine::clearCache() {
    internal_->clear();
}

void Engine::loadDatabaseModule(const char* path) {
    sqlite3* database = internal_->sqliteHandle();
    if (!database) {
        throw std::logic_error(QObject::tr("Не инициализировано").toStdString());
    }
    const std::vector<std::string> known = internal_->permissions().modules();
    SqliteText reason;
    const int code = sqlite3_load_extension(database, path, nullptr, reason.address());
    internal_->permissions().closeModulesBut(known);
    if (code != SQLITE_OK) {
        throw err::SqliteException(database, loadFailure(QString::fromUtf8(path), reason));
    }
}

void Engine::loadTableAdapterModule(Core* core, TableAdapterInit init) {
    sqlite3* database = internal_->sqliteHandle();
    SqliteText reason;
    if (init(database, reason.address(), core, internal_.get()) != SQLITE_OK) {
        throw err::SqliteException(database, loadFailure(QStringLiteral("tableAdaptor"), reason));
    }
}

void Engine::allowFunctions(const QStringList& names) {
    for (const QString& name : names) {
        internal_->permissions().allow(name.toStdString());
    }
}

bool Engine::allowsFunction(const QString& name) const {
    return internal_->permissions().allows(name.toStdString());
}

QString Engine::refusedAction() const {
    return QString::fromStdString(internal_->permissions().refused());
}

void Engine::registerManagement(std::unique_ptr<engine::TableManagement> management) {
    if (QString name = management->tableName(); !name.isEmpty()) {
        internal_->managements()[name] = std::move(management);
    }
}

void Engine::unRegisterManagement(const QString& name) {
    internal_->managements().erase(name);
}

engine::TableManagement* Engine::findManagement(const QString& name) {
    const auto found = internal_->managements().find(name);
    return found == internal_->managements().end() ? nullptr : found->second.get();
}

void Engine::detachTable(const QString& name) {
    if (engine::TableManagement* management = findManagement(name)) {
        management->detach();
    }
}

engine::EngineIndices* Engine::indices(const std::shared_ptr<dp::Table>& table) {
    auto& stores = internal_->tableIndices();
    const QString name = table->name();
    auto found = stores.find(name);
    if (found == stores.end()) {
        const engine::EngineIndicesSetup setup({{"Collate", QStringLiteral("Locale")},
                                                {"UseCaseInsensitiveGlob", true},
                                                {"UseCaseInsensitiveLike", true}});
        auto store = engine::EngineIndicesFactory::instance()->construct(setup, *internal_);
        found = stores.emplace(name, std::move(store)).first;
    }
    return found->second.get();
}

void Engine::clearIndices(const std::shared_ptr<dp::Table>& table) {
    const QString name = table->name();
    const auto& stores = internal_->tableIndices();
    if (const auto found = stores.find(name); found != stores.end()) {
        found->second->dropStorage();
    }
    if (engine::TableManagement* management = findManagement(name)) {
        management->indicesCleared();
    }
}

void Engine::settleTables() {
    virtualTables().settleSoon();
}

VirtualTables& Engine::virtualTables() const {
    return internal_->virtualTables();
}

void Engine::cancelQuery() {
    work::Cancellation::cancelAll();
    if (sqlite3* database = internal_->sqliteHandle()) {
        sqlite3_interrupt(database);
    }
}

} // namespace orvane
