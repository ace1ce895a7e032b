#include "host/providers/FileSource.h"

#include "host/providers/CsvRules.h"
#include "host/providers/DatasetPool.h"
#include "host/providers/FileStamp.h"
#include "host/providers/GdalErrors.h"
#include "host/providers/LayerSchema.h"
#include "platform/cs/CoordSystem.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <stdexcept>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::FileSource)
};

struct SourceName {
    QString path;
    QString layer; ///< empty for all
    QString encoding;
};

SourceName splitSource(const QString& source) {
    if (QFileInfo::exists(source))
        return {source, {}, {}};
    auto parts = source.split(QLatin1Char('|'));
    SourceName name{parts.takeFirst(), {}, {}};
    const auto layerKey = QLatin1String("layername=");
    const auto encodingKey = QLatin1String("encoding=");
    for (const auto& part : parts) {
        if (part.startsWith(encodingKey, Qt::CaseInsensitive))
            name.encoding = part.mid(encodingKey.size());
        else if (part.startsWith(layerKey, Qt::CaseInsensitive))
            name.layer = part.mid(layerKey.size());
        else
            name.layer = part;
    }
    return name;
}

QString tableName(const QString& layerName, const QString& path) {
    return dp::DataObject::makeValidObjectName(layerName.isEmpty() ? QFileInfo(path).completeBaseName()
                                                                   : layerName);
}

bool isTextTable(const QString& path) {
    static const QStringList endings{QStringLiteral("csv"), QStringLiteral("tsv"), QStringLiteral("psv")};
    return QFileInfo(path).isFile() && endings.contains(QFileInfo(path).suffix().toLower());
}

/// A file and what is known of its layers before they are described.
struct OpenedFile {
    std::shared_ptr<DatasetPool> pool;
    FieldReadings readings;
    std::shared_ptr<cs::CoordSystem> assumedCoordSystem;
};

OpenedFile openTextTable(const QString& path, const QString& encoding, const QList<QByteArray>& options) {
    DatasetPool::Source source{path.toUtf8(), {"CSV"}, options, nullptr};
    if (const auto from = encodingOfTextFile(path, encoding); !from.isEmpty())
        source.copy = std::make_shared<TranscodedFile>(path, from);

    const auto plain = std::make_shared<DatasetPool>(source)->acquire();
    const OGRLayerH plainLayer = GDALDatasetGetLayer(plain.dataset(), 0);
    OpenedFile file;
    if (plainLayer) {
        const auto rules = csvRulesOf(plainLayer);
        source.openOptions = rules.openOptions + options;
        if (rules.isGeographic)
            file.assumedCoordSystem = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
    }
    file.pool = std::make_shared<DatasetPool>(std::move(source));
    const auto typed = file.pool->acquire();
    const GdalErrorScope errors;
    if (const OGRLayerH layer = GDALDatasetGetLayer(typed.dataset(), 0))
        file.readings = numbersWithGaps(layer);
    return file;
}

/// What GDAL opens: an archive is read without being unpacked.
QString pathForGdal(const QString& path) {
    const QFileInfo file(path);
    const bool isArchive =
        file.isFile() && file.suffix().compare(QLatin1String("zip"), Qt::CaseInsensitive) == 0;
    return isArchive ? QLatin1String(archivePrefix) + file.absoluteFilePath() : path;
}

OpenedFile openOther(const QString& path, const QString& encoding, QList<QByteArray> options) {
    if (!encoding.isEmpty())
        options.append("ENCODING=" + encoding.toUtf8());
    DatasetPool::Source source{pathForGdal(path).toUtf8(), {}, std::move(options), nullptr};
    return {std::make_shared<DatasetPool>(std::move(source)), {}, nullptr};
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
    const auto& encoding = options.encoding.isEmpty() ? name.encoding : options.encoding;
    QList<QByteArray> driverOptions;
    for (const auto& option : options.driverOptions)
        driverOptions.append(option.toUtf8());
    const auto file = isTextTable(name.path) ? openTextTable(name.path, encoding, driverOptions)
                                             : openOther(name.path, encoding, driverOptions);

    const auto lease = file.pool->acquire();
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
            tables.push_back(
                std::make_shared<LayerTable>(tableName(layers.last(), name.path), file.pool, i, layerName,
                                             describeLayer(layer, file.readings, file.assumedCoordSystem)));
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
