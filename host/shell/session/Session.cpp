#include "host/shell/session/Session.h"

#include "host/adaptor/Adaptor.h"
#include "host/adaptor/QuerySelection.h"
#ifdef ORVANE_WITH_POSTGRES
#include "host/postgres/PostgresExtension.h"
#include "host/postgres/PostgresSource.h"
#endif
#include "host/providers/FileSource.h"
#include "host/providers/FilesExtension.h"
#include "host/providers/results/ResultFile.h"
#include "host/shell/messages/NearestName.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/messages/SqliteErrors.h"
#include "host/shell/messages/StandardError.h"
#include "platform/di/ServiceLocator.h"
#include "platform/sql/parsing/SqlParser.h"

#include <orvane/Engine.h>

#include <QFileInfo>
#include <QSqlDriver>

namespace orvane::shell {

namespace {

constexpr char sourceProperty[] = "source";

/// What went wrong, from the outermost account to the cause.
QString reason(const std::exception& failure) {
    QString text = QString::fromUtf8(failure.what());
    try {
        std::rethrow_if_nested(failure);
    } catch (const std::exception& cause) {
        text += QStringLiteral(": ") + reason(cause);
    } catch (...) {
    }
    return text;
}

template<class Base, class Derived>
std::vector<std::shared_ptr<Base>> shared(const std::vector<std::shared_ptr<Derived>>& objects) {
    return {objects.begin(), objects.end()};
}

#ifdef ORVANE_WITH_POSTGRES
bool isServer(const QString& source) {
    return postgres::isServerSource(source);
}
std::vector<std::shared_ptr<dp::Table>> openServer(const QString& source) {
    return shared<dp::Table>(postgres::openServer(source));
}
/// Without a password.
QString shownSource(const QString& source) {
    return isServer(source) ? postgres::titleOfSource(source) : source;
}
#else
bool isServer(const QString& source) {
    return source.startsWith(QLatin1String("postgresql://")) ||
           source.startsWith(QLatin1String("postgres://")) ||
           source.startsWith(QLatin1String("PG:"), Qt::CaseInsensitive);
}
std::vector<std::shared_ptr<dp::Table>> openServer(const QString&) {
    throw std::runtime_error(Shell::tr("эта сборка не открывает базы PostgreSQL").toStdString());
}
QString shownSource(const QString& source) {
    return source;
}
#endif

} // namespace

Session::Session() {
    serviceLocator().exchange(settings_);
    core_.registerService(&catalog_);
    engine_ = Engine::load(&core_);
    engine_->loadTableAdapterModule(&core_, adaptor::initialise);
    database_ = *static_cast<sqlite3* const*>(engine_->engineDatabase().driver()->handle().constData());
    addProvider(std::make_unique<files::FilesExtension>(nullptr));
#ifdef ORVANE_WITH_POSTGRES
    addProvider(std::make_unique<postgres::PostgresExtension>(nullptr));
#endif
}

void Session::addProvider(std::unique_ptr<EngineExtension> provider) {
    core_.pluginManager()->registerExtension(provider.get());
    provider->linkDataCatalog();
    providers_.push_back(std::move(provider));
}

Session::~Session() {
    if (sqlite3_get_autocommit(database_) == 0) {
        printMessage(Shell::tr("транзакция не завершена: без Commit её изменения не сохранены"));
    }
    serviceLocator().exchange<TypedSettings>(nullptr);
}

void Session::open(const Options& options) {
    apply(options);
    for (const QString& path : options.files) {
        openFile(path);
    }
    for (const TableSource& table : options.tables) {
        openTable(table);
    }
    if (options.selection) {
        select(*options.selection);
    }
}

void Session::apply(const Options& options) {
    if (!options.indexDirectory.isEmpty() && !QFileInfo(options.indexDirectory).isDir()) {
        throw UsageError(Shell::tr("--index-directory: нет папки «%0»").arg(options.indexDirectory));
    }
    settings_->setValue(DefaultSettingsList::IndexDirectory, options.indexDirectory);
    settings_->setValue(DefaultSettingsList::NoAttributeIndices, options.noIndices);
    engine_->cache()->setUseGaiaCache(options.memo);
    trustsReferences_ = options.trustReferences;
}

std::vector<std::shared_ptr<dp::Table>> Session::openLayers(const QString& source) const {
    files::OpenOptions options;
    options.trustReferences = trustsReferences_;
    try {
        return isServer(source) ? openServer(source) : shared<dp::Table>(files::openFile(source, options));
    } catch (const std::exception& failure) {
        throw UsageError(reason(failure));
    }
}

void Session::openFile(const QString& path) {
    for (const auto& table : openLayers(path)) {
        table->setName(catalog_.freeName(table->name()));
        table->setProperty(sourceProperty, shownSource(path));
        catalog_.add(table);
    }
    makeVirtualTables();
}

QString Session::sourceOf(const dp::DataObject& table) {
    return table.property(sourceProperty).toString();
}

void Session::openTable(const TableSource& source) {
    const QString whole =
        source.layer.isEmpty() ? source.path : source.path + QLatin1Char('|') + source.layer;
    const auto tables = openLayers(whole);
    if (tables.size() != 1) {
        QStringList layers;
        for (const auto& table : tables) {
            layers += table->name();
        }
        throw UsageError(Shell::tr("%0: выберите один из слоёв: %1")
                             .arg(shownSource(source.path), layers.join(QStringLiteral(", "))));
    }
    tables.front()->setName(source.name);
    tables.front()->setProperty(sourceProperty, shownSource(whole));
    if (!catalog_.add(tables.front())) {
        throw UsageError(Shell::tr("имя таблицы «%0» уже занято").arg(source.name));
    }
    makeVirtualTables();
}

void Session::select(const SelectionSource& source) {
    if (!source.query.empty()) {
        return select(source.query);
    }
    const auto object = catalog_.dataObject(source.table);
    if (!object) {
        QStringList known;
        for (const auto& other : catalog_.dataObjects()) {
            known += other->name();
        }
        const QString nearest = nearestName(source.table, known);
        throw UsageError(nearest.isEmpty()
                             ? Shell::tr("--select: нет таблицы «%0»").arg(source.table)
                             : Shell::tr("--select: нет таблицы «%0»; возможно, имелось в виду «%1»")
                                   .arg(source.table, nearest));
    }
    std::vector<dp::FeatureId> ids;
    for (const qint64 id : source.ids) {
        ids.emplace_back(QVariant(id));
    }
    catalog_.setSelection({object, std::move(ids)});
}

void Session::select(const std::string& query) {
    try {
        catalog_.setSelection(adaptor::selectionOf(query, *engine_, catalog_));
    } catch (const adaptor::SelectionError& error) {
        const sql::TokenizedText text = sql::tokenize(query);
        const Names known = names();
        sql::SqlParser parsed(nullptr);
        parsed.parse(query);
        const SqliteErrors errors(text, parsed.tables(), std::string(), -1, known);
        const Problem problem = errors.explain(QString::fromUtf8(error.what()));
        throw UsageError(QStringLiteral("--select: %0").arg(problem.message));
    }
}

void Session::addResult(const QString& name, files::ResultRows& rows) {
    if (dp::DataObject::makeValidObjectName(name) != name ||
        name.compare(dp::DataCatalogWithSelection::selectionTableName(), Qt::CaseInsensitive) == 0) {
        throw std::runtime_error(Shell::tr("таблица не может называться «%0»").arg(name).toStdString());
    }
    files::addResultTable(catalog_, name, rows);
    try {
        makeVirtualTables();
    } catch (...) {
        catalog_.close(name);
        throw;
    }
}

bool Session::closeTable(const QString& name) {
    const auto object = catalog_.dataObject(name);
    if (!object || !catalog_.close(object->name())) {
        return false;
    }
    QCoreApplication::sendPostedEvents();
    return true;
}

/// The catalogue announces new tables by queued signals; a failure to make one is thrown from their delivery.
void Session::makeVirtualTables() {
    try {
        QCoreApplication::sendPostedEvents();
    } catch (const std::exception& failure) {
        throw UsageError(reason(failure));
    }
}

} // namespace orvane::shell
