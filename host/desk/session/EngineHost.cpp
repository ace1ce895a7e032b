#include "host/desk/session/EngineHost.h"

#include <host/adaptor/Adaptor.h>
#include <host/adaptor/functions/FunctionRegistry.h>
#include <host/providers/FileSource.h>
#include <host/providers/FilesExtension.h>
#include <orvane/Engine.h>
#include <orvane/engine/FunctionNames.h>
#include <platform/cs/CoordSystem.h>
#include <platform/di/ServiceLocator.h>

#include <QCoreApplication>
#include <QSqlDriver>

namespace orvane::desk {

namespace {

QString text(const char* source) {
    return QCoreApplication::translate("orvane::desk::EngineHost", source);
}

quint64 keyOf(const dp::DataObject& object) {
    return reinterpret_cast<quintptr>(&object);
}

QString typeName(int metaType) {
    switch (metaType) {
    case QMetaType::Bool: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "да или нет"));
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::LongLong: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "целое"));
    case QMetaType::Float:
    case QMetaType::Double: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "число"));
    case QMetaType::QDate: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "дата"));
    case QMetaType::QTime: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "время"));
    case QMetaType::QDateTime: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "дата и время"));
    case QMetaType::QByteArray: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "байты"));
    default: return text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "текст"));
    }
}

TableInfo describe(const dp::Table& table) {
    TableInfo info;
    info.key = keyOf(table);
    info.name = table.name();
    info.featureCount = table.featureCount();
    info.isReadOnly = table.isReadOnly();
    info.revision = table.revision();
    const auto schema = table.schema();
    info.hasGeometry = schema->geometryIndex() >= 0;
    if (const auto system = table.coordSystem()) {
        info.coordSystem = system->name();
    }
    for (int i = 0; i < schema->numAttributes(); ++i) {
        if (i == schema->geometryIndex()) {
            info.columns.append(
                {QStringLiteral("obj"), text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "геометрия"))});
        } else if (i == schema->styleIndex()) {
            info.columns.append({QStringLiteral("style"), typeName(QMetaType::QString)});
        } else {
            info.columns.append({schema->at(i)->name(), typeName(schema->at(i)->type())});
        }
    }
    return info;
}

} // namespace

QString reasonOf(const std::exception& failure) {
    QString reason = QString::fromUtf8(failure.what());
    try {
        std::rethrow_if_nested(failure);
    } catch (const std::exception& cause) {
        reason += QStringLiteral(": ") + reasonOf(cause);
    } catch (...) {
        return reason;
    }
    return reason;
}

EngineHost::EngineHost(std::function<void(const QString&)> report) : report_(std::move(report)) {
    serviceLocator().exchange(settings_);
    core_.registerService(&catalog_);
    engine_ = Engine::load(&core_);
    engine_->loadTableAdapterModule(&core_, adaptor::initialise);
    files_ = std::make_unique<files::FilesExtension>(nullptr);
    core_.pluginManager()->registerExtension(files_.get());
    files_->linkDataCatalog();
}

EngineHost::~EngineHost() {
    serviceLocator().exchange<TypedSettings>(nullptr);
}

QVector<quint64> EngineHost::open(const QString& source) {
    const auto tables = files::openFile(source);
    files::addToCatalog(catalog_, tables);
    settle();
    QVector<quint64> keys;
    for (const auto& table : tables) {
        keys.append(keyOf(*table));
    }
    return keys;
}

bool EngineHost::close(quint64 key) {
    const auto object = table(key);
    const bool isClosed = object && catalog_.close(object->name());
    settle();
    return isClosed;
}

void EngineHost::rename(quint64 key, const QString& name) {
    const auto object = table(key);
    if (!object) {
        throw std::runtime_error(
            text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "таблица уже закрыта")).toStdString());
    }
    if (dp::DataObject::makeValidObjectName(name) != name ||
        name.compare(dp::DataCatalogWithSelection::selectionTableName(), Qt::CaseInsensitive) == 0) {
        throw std::runtime_error(
            text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "таблица не может называться «%0»"))
                .arg(name)
                .toStdString());
    }
    if (!catalog_.rename(object->name(), name)) {
        throw std::runtime_error(text(QT_TRANSLATE_NOOP("orvane::desk::EngineHost", "имя «%0» уже занято"))
                                     .arg(name)
                                     .toStdString());
    }
    settle();
}

/// The catalogue announces changes by queued signals; a failure to make a table is thrown from their
/// delivery, and the rest is delivered afterwards.
void EngineHost::settle() {
    for (bool isDelivered = false; !isDelivered;) {
        try {
            QCoreApplication::sendPostedEvents();
            isDelivered = true;
        } catch (const std::exception& failure) {
            report_(reasonOf(failure));
        }
    }
}

TableInfos EngineHost::tables() const {
    TableInfos infos;
    for (const auto& object : catalog_.dataObjects()) {
        if (const auto* table = dynamic_cast<const dp::Table*>(object.get())) {
            infos.append(describe(*table));
        }
    }
    return infos;
}

std::shared_ptr<dp::Table> EngineHost::table(quint64 key) const {
    for (const auto& object : catalog_.dataObjects()) {
        if (keyOf(*object) == key) {
            return std::dynamic_pointer_cast<dp::Table>(object);
        }
    }
    return nullptr;
}

QStringList EngineHost::functions() const {
    using Type = sql::FunctionInfo;
    auto names = engine_->functionSet(QFlags(Type::Scalar) | Type::Aggregate | Type::Window);
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        for (const char* name : record.names()) {
            names.insert(engine::dialectFunctionName(QLatin1String(name)));
        }
    }
    return {names.begin(), names.end()};
}

sqlite3* EngineHost::database() const {
    return *static_cast<sqlite3* const*>(engine_->engineDatabase().driver()->handle().constData());
}

} // namespace orvane::desk
