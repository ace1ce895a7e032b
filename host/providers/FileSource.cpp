#include "host/providers/FileSource.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/GdalHandles.h"
#include "host/providers/datasets/LayerSchema.h"
#include "host/providers/text/CsvRules.h"
#include "platform/cs/CoordSystem.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <limits>
#include <stdexcept>
#include <string_view>

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

/// A file and what is known of its layers before they are described.
struct OpenedFile {
    std::shared_ptr<DatasetPool> pool;
    FieldReadings readings;
    std::shared_ptr<cs::CoordSystem> assumedCoordSystem;
    int mostFields = std::numeric_limits<int>::max(); ///< that the table shows
};

/// Whether somebody has said what the types are, which counts then.
bool hasTypesBeside(const QString& path) {
    const QString types = path.left(path.lastIndexOf(QLatin1Char('.'))) + QStringLiteral(".csvt");
    VSIStatBufL found;
    return VSIStatL(types.toUtf8().constData(), &found) == 0;
}

OpenedFile openTextTable(const QString& path, const QString& encoding, const QList<QByteArray>& options) {
    DatasetPool::Source source{path.toUtf8(), {"CSV"}, options, nullptr};
    TextStandIn::Changes changes;
    changes.encoding = encodingOfTextFile(path, encoding);
    changes.addedSeparator = separatorForOneColumn(path, changes.encoding);
    if (changes.ofText())
        source.copy = std::make_shared<TextStandIn>(path, changes);

    const auto plain = std::make_shared<DatasetPool>(source)->acquire();
    const OGRLayerH plainLayer = GDALDatasetGetLayer(plain.dataset(), 0);
    OpenedFile file;
    if (!plainLayer) {
        file.pool = std::make_shared<DatasetPool>(std::move(source));
        return file;
    }
    const auto rules = csvRulesOf(plainLayer);
    source.openOptions = rules.openOptions + options;
    if (rules.isGeographic)
        file.assumedCoordSystem = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
    file.pool = std::make_shared<DatasetPool>(source);
    auto typed = file.pool->acquire();
    if (!hasTypesBeside(path) && mayHoldCodes(source.copy ? QString::fromUtf8(source.copy->path()) : path)) {
        changes.types = typesKeepingCodes(plainLayer, GDALDatasetGetLayer(typed.dataset(), 0));
        if (!changes.types.isEmpty()) {
            source.copy = std::make_shared<TextStandIn>(path, changes);
            file.pool = std::make_shared<DatasetPool>(std::move(source));
            typed = file.pool->acquire();
        }
    }
    const GdalErrorScope errors;
    file.readings = numbersWithGaps(GDALDatasetGetLayer(typed.dataset(), 0));
    if (changes.addedSeparator != 0)
        file.mostFields = 1;
    return file;
}

OpenedFile openOther(const QString& path, const QString& encoding, QList<QByteArray> options) {
    if (!encoding.isEmpty())
        options.append("ENCODING=" + encoding.toUtf8());
    DatasetPool::Source source{pathForGdal(path).toUtf8(), {}, std::move(options), nullptr};
    return {std::make_shared<DatasetPool>(std::move(source)), {}, nullptr};
}

/// Whether GDAL finds something else in a file than tables of text.
bool holdsMoreThanText(const OpenedFile& file) {
    try {
        const auto lease = file.pool->acquire();
        return std::string_view(GDALGetDriverShortName(GDALGetDatasetDriver(lease.dataset()))) != "CSV";
    } catch (const std::runtime_error&) {
        return false;
    }
}

/// A file, or the text tables in an archive, each of which has rules of its own.
std::vector<OpenedFile> openAll(const QString& path, const QString& encoding,
                                const QList<QByteArray>& options) {
    if (isTextTableName(path) && QFileInfo(path).isFile())
        return {openTextTable(path, encoding, options)};
    std::vector<OpenedFile> files{openOther(path, encoding, options)};
    const auto texts = textTablesIn(path);
    if (texts.isEmpty() || holdsMoreThanText(files.front()))
        return files;
    files.clear();
    for (const auto& text : texts)
        files.push_back(openTextTable(text, encoding, options));
    return files;
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
    std::vector<std::shared_ptr<LayerTable>> tables;
    QStringList layers;
    for (const auto& file : openAll(name.path, encoding, driverOptions)) {
        const auto lease = file.pool->acquire();
        const GdalErrorScope errors;
        for (int i = 0; i < GDALDatasetGetLayerCount(lease.dataset()); ++i) {
            const OGRLayerH layer = GDALDatasetGetLayer(lease.dataset(), i);
            if (!layer)
                continue;
            const QByteArray layerName(OGR_L_GetName(layer));
            layers.append(QString::fromUtf8(layerName));
            if (name.layer.isEmpty() || layers.last().compare(name.layer, Qt::CaseInsensitive) == 0)
                tables.push_back(std::make_shared<LayerTable>(
                    tableName(layers.last(), name.path), file.pool, i, layerName,
                    describeLayer(layer, file.readings, file.assumedCoordSystem, file.mostFields)));
        }
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
