#include "host/providers/FileSource.h"

#include "host/providers/DatasetPool.h"
#include "host/providers/GdalErrors.h"
#include "host/providers/LayerSchema.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <mutex>
#include <stdexcept>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::FileSource)
};

void registerDrivers() {
    static std::once_flag once;
    std::call_once(once, [] {
        GDALAllRegister();
        routeGdalMessagesToLogger();
    });
}

struct SourceName {
    QString path;
    QString layer; ///< empty for all
};

SourceName splitSource(const QString& source) {
    const auto bar = source.lastIndexOf(QLatin1Char('|'));
    if (bar < 0 || QFileInfo::exists(source))
        return {source, {}};
    auto layer = source.mid(bar + 1);
    const auto prefix = QLatin1String("layername=");
    if (layer.startsWith(prefix, Qt::CaseInsensitive))
        layer.remove(0, prefix.size());
    return {source.left(bar), layer};
}

QString tableName(const QString& layerName, const QString& path) {
    return dp::DataObject::makeValidObjectName(layerName.isEmpty() ? QFileInfo(path).completeBaseName()
                                                                   : layerName);
}

[[noreturn]] void raiseNoSuchLayer(const SourceName& source, const QStringList& layers) {
    throw std::runtime_error(Texts::tr("В «%1» нет слоя «%2», есть: %3")
                                 .arg(source.path, source.layer, layers.join(QStringLiteral(", ")))
                                 .toStdString());
}

} // namespace

std::vector<std::shared_ptr<LayerTable>> openFile(const QString& source, const OpenOptions& options) {
    registerDrivers();
    const auto name = splitSource(source);
    DatasetPool::Source poolSource{name.path.toUtf8(), {}, {}};
    for (const auto& option : options.driverOptions)
        poolSource.openOptions.append(option.toUtf8());
    const auto pool = std::make_shared<DatasetPool>(std::move(poolSource));
    const auto lease = pool->acquire();

    const GdalErrorScope errors;
    std::vector<std::shared_ptr<LayerTable>> tables;
    QStringList layers;
    for (int i = 0; i < GDALDatasetGetLayerCount(lease.dataset()); ++i) {
        const OGRLayerH layer = GDALDatasetGetLayer(lease.dataset(), i);
        if (!layer)
            continue;
        const QByteArray layerName(OGR_L_GetName(layer));
        layers.append(QString::fromUtf8(layerName));
        if (name.layer.isEmpty() || layers.last().compare(name.layer, Qt::CaseInsensitive) == 0)
            tables.push_back(std::make_shared<LayerTable>(tableName(layers.last(), name.path), pool, i,
                                                          layerName, describeLayer(layer)));
    }
    if (layers.isEmpty())
        throw std::runtime_error(Texts::tr("В «%1» нет таблиц").arg(name.path).toStdString());
    if (tables.empty())
        raiseNoSuchLayer(name, layers);
    return tables;
}

void addToCatalog(dp::DataCatalog& catalog, const std::vector<std::shared_ptr<LayerTable>>& tables) {
    for (const auto& table : tables) {
        table->setName(catalog.freeName(table->name()));
        catalog.add(table);
    }
}

} // namespace orvane::files
