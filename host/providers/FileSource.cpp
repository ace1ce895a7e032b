#include "host/providers/FileSource.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/Confinement.h"
#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/DbfEncoding.h"
#include "host/providers/datasets/ExchangeJournal.h"
#include "host/providers/datasets/FileChecks.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/GdalHandles.h"
#include "host/providers/datasets/LayerSchema.h"
#include "host/providers/text/TextEditor.h"
#include "host/providers/text/TextSource.h"
#include "platform/log/Logger.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

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
    bool trustsReferences = false;
};

SourceName splitSource(const QString& source) {
    if (QFileInfo::exists(source)) {
        return {source, {}, {}};
    }
    auto parts = source.split(QLatin1Char('|'));
    SourceName name{parts.takeFirst(), {}, {}};
    const auto layerKey = QLatin1String("layername=");
    const auto encodingKey = QLatin1String("encoding=");
    for (const auto& part : parts) {
        if (part.startsWith(encodingKey, Qt::CaseInsensitive)) {
            name.encoding = part.mid(encodingKey.size());
        } else if (part.startsWith(layerKey, Qt::CaseInsensitive)) {
            name.layer = part.mid(layerKey.size());
        } else {
            name.layer = part;
        }
    }
    return name;
}

QString tableName(const QString& layerName, const QString& path) {
    return dp::DataObject::makeValidObjectName(layerName.isEmpty() ? QFileInfo(path).completeBaseName()
                                                                   : layerName);
}

/// The tables that are wanted, and the names of all layers.
struct Opened {
    std::vector<std::shared_ptr<LayerTable>> tables;
    QStringList layers;

    /// Notes a layer; whether it is wanted.
    bool add(const QString& layer, const SourceName& source) {
        layers.append(layer);
        return source.layer.isEmpty() || layer.compare(source.layer, Qt::CaseInsensitive) == 0;
    }
};

void openTextTable(const QString& path, const SourceName& source, Opened& opened) {
    const QString name = QFileInfo(path).completeBaseName();
    if (!opened.add(name, source)) {
        return;
    }
    const auto table = std::make_shared<TextTable>(path.toUtf8(), source.encoding.toUtf8());
    opened.tables.push_back(std::make_shared<LayerTable>(
        tableName(name, path), std::make_shared<TextSource>(table), std::make_unique<TextEditor>(table)));
}

void warn(const QString& text) {
    loggerInstance()->write(LogLevel::Warning, QStringLiteral("FileSource"), __LINE__,
                            QString::fromLatin1(__func__), text);
}

QString unopenedLayer(const QString& layer, const SourceName& source, const QString& reason) {
    const QString text = Texts::tr("Не удалось открыть слой «%1» в «%2»: %3").arg(layer, source.path, reason);
    // SQLite's words for what is taken from a database that is not trusted.
    static const QRegularExpression missing(QStringLiteral("no such (function|module)"));
    return !source.trustsReferences && missing.match(reason).hasMatch()
               ? Texts::tr("%1; нужное вне файла даёт --trust-references").arg(text)
               : text;
}

/// Warnings, or an error where nothing else opened.
void tellFailures(const QStringList& failures, const Opened& opened) {
    if (opened.tables.empty() && !failures.isEmpty()) {
        throw std::runtime_error(failures.first().toStdString());
    }
    for (const QString& failure : failures) {
        warn(failure);
    }
}

void openLayers(const SourceName& source, Opened& opened) {
    QList<QByteArray> options;
    const QString path = pathForGdal(source.path);
    QByteArray encoding = source.encoding.toUtf8();
    if (encoding.isEmpty() && !(encoding = encodingOfDbf(path)).isEmpty()) {
        warn(Texts::tr("«%1» не называет своей кодировки, похоже на %2; другая называется так: "
                       "«%1|encoding=windows-1251»")
                 .arg(source.path, QString::fromLatin1(encoding)));
    }
    if (!encoding.isEmpty()) {
        options.append("ENCODING=" + encoding);
    }
    const auto pool = std::make_shared<DatasetPool>(
        DatasetPool::Source{path.toUtf8(), std::move(options), nullptr, source.trustsReferences});
    const auto lease = pool->acquire();
    const Confinement confinement(pool->reach(), pool->source().path);
    QStringList failures;
    for (int i = 0; i < GDALDatasetGetLayerCount(lease.dataset()); ++i) {
        const GdalErrorScope errors;
        const OGRLayerH layer = GDALDatasetGetLayer(lease.dataset(), i);
        const QByteArray name(layer ? OGR_L_GetName(layer) : "");
        if (!layer || !opened.add(QString::fromUtf8(name), source)) {
            continue;
        }
        auto schema = describeLayer(layer);
        if (schema.columns.empty() &&
            !errors.error().isEmpty()) { // as of a view that calls what is not there
            failures += unopenedLayer(opened.layers.last(), source, errors.error());
            continue;
        }
        opened.tables.push_back(LayerTable::ofLayer(tableName(opened.layers.last(), source.path), pool, i,
                                                    name, std::move(schema)));
    }
    tellFailures(failures, opened);
}

/// Whether GDAL finds something else in an archive than tables of text.
bool holdsMoreThanText(const SourceName& archive) {
    try {
        const auto lease = std::make_shared<DatasetPool>(
                               DatasetPool::Source{
                                   pathForGdal(archive.path).toUtf8(), {}, nullptr, archive.trustsReferences})
                               ->acquire();
        return std::string_view(GDALGetDriverShortName(GDALGetDatasetDriver(lease.dataset()))) != "CSV";
    } catch (const std::runtime_error&) {
        return false;
    }
}

/// The layers of a file, or the text tables in an archive.
Opened openAll(const SourceName& source) {
    Opened opened;
    requireOrdinaryFile(source.path.toUtf8());
    if (isTextTableName(source.path) && !QFileInfo(source.path).isDir()) {
        openTextTable(source.path, source, opened);
        return opened;
    }
    const auto texts = textTablesIn(source.path);
    if (texts.isEmpty() || holdsMoreThanText(source)) {
        openLayers(source, opened);
        return opened;
    }
    for (const auto& text : texts) {
        openTextTable(text, source, opened);
    }
    return opened;
}

[[noreturn]] void raiseNoSuchLayer(const SourceName& source, const QStringList& layers) {
    throw std::runtime_error(Texts::tr("В «%1» нет слоя «%2», есть: %3")
                                 .arg(source.path, source.layer, layers.join(QStringLiteral(", ")))
                                 .toStdString());
}

/// Refuses a table that the engine could not show.
void requireFewColumns(const LayerTable& table, const QString& path) {
    constexpr int most = 1998; // SQLite's 2,000 but for the geometry and the style
    const auto schema = table.schema();
    const int count = schema->numAttributes() - (schema->geometryIndex() >= 0 ? 1 : 0);
    if (count > most) {
        throw std::runtime_error(
            Texts::tr("Не удалось открыть «%1»: столбцов %2, а в таблице их не больше %3")
                .arg(path)
                .arg(count)
                .arg(most)
                .toStdString());
    }
}

} // namespace

std::vector<std::shared_ptr<LayerTable>> openFile(const QString& source, const OpenOptions& options) {
    registerDrivers();
    auto name = splitSource(source);
    settleExchangeAround(QFile::encodeName(name.path).toStdString());
    if (!options.encoding.isEmpty()) {
        name.encoding = options.encoding;
    }
    name.trustsReferences = options.trustReferences;
    Opened opened = openAll(name);
    if (opened.layers.isEmpty()) {
        throw std::runtime_error(Texts::tr("В «%1» нет таблиц").arg(name.path).toStdString());
    }
    if (opened.tables.empty()) {
        raiseNoSuchLayer(name, opened.layers);
    }
    for (const auto& table : opened.tables) {
        requireFewColumns(*table, name.path);
    }
    return opened.tables;
}

void addToCatalog(dp::DataCatalog& catalog, const std::vector<std::shared_ptr<LayerTable>>& tables) {
    for (const auto& table : tables) {
        table->setName(catalog.freeName(table->name()));
        catalog.add(table);
    }
}

} // namespace orvane::files
