#include "host/providers/results/ResultFile.h"

#include "host/providers/datasets/DatasetPool.h"
#include "host/providers/datasets/FileExchange.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/LayerSchema.h"
#include "host/providers/datasets/ResultDirectory.h"
#include "host/providers/results/ResultLayer.h"
#include "platform/work/Cancellation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <stdexcept>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::ResultFile)
};

/// The name under which GDAL knows the format's number for it, -1.
constexpr char undefinedCartesian[] = "LOCAL_CS[\"Undefined Cartesian SRS\"]";

const std::vector<ResultFormat>& resultFormats() {
    static const std::vector<ResultFormat> formats{
        {"gpkg", "GPKG", {}, {}, false, 0, 0, 0, undefinedCartesian},
        {"geojson", "GeoJSON", {}, {"RFC7946=YES"}},
        {"csv", "CSV", {}, {"GEOMETRY=AS_WKT"}},
        // dBASE: names of 10 bytes; texts of a length below 255; numbers as GDAL writes the longest.
        {"shp", "ESRI Shapefile", {}, {"ENCODING=UTF-8"}, true, 10, 254, 24},
        {"fgb", "FlatGeobuf", {}, {}, false, 0, 0, 0, nullptr, true},
    };
    return formats;
}

/// The table makes spatial indices of its own, in memory.
const ResultFormat tableFormat{
    "gpkg", "GPKG", {}, {"SPATIAL_INDEX=NO", "FID=cf0b5c3a96d1"}, false, 0, 0, 0, undefinedCartesian};

const ResultFormat* formatOf(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    const auto& formats = resultFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), [&suffix](const ResultFormat& format) {
        return suffix == QLatin1String(format.suffix);
    });
    return found == formats.end() ? nullptr : &*found;
}

[[noreturn]] void raise(const QString& path, const QString& cause) {
    throw std::runtime_error(QStringLiteral("%1: %2").arg(path, cause).toStdString());
}

/// The files that may stand beside a Shapefile, which would not fit other rows.
QStringList partsOf(const QFileInfo& file) {
    static const QStringList endings{QStringLiteral("dbf"), QStringLiteral("shx"), QStringLiteral("prj"),
                                     QStringLiteral("cpg"), QStringLiteral("qix"), QStringLiteral("sbn"),
                                     QStringLiteral("sbx"), QStringLiteral("idm"), QStringLiteral("ind")};
    QStringList parts;
    if (file.suffix().toLower() == QLatin1String("shp")) {
        for (const QString& ending : endings) {
            parts += file.absoluteDir().filePath(file.completeBaseName() + QLatin1Char('.') + ending);
        }
    }
    return parts;
}

std::filesystem::path diskPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

/// What makes a directory; its failures name what it is for.
template<class Make>
std::shared_ptr<ResultDirectory> makeDirectory(const QString& subject, Make make) {
    try {
        return make();
    } catch (const std::runtime_error& error) {
        raise(subject, QString::fromUtf8(error.what()));
    }
}

} // namespace

bool ResultFile::isKnown(const QString& path) {
    return formatOf(path) != nullptr;
}

QStringList ResultFile::endings() {
    QStringList endings;
    for (const ResultFormat& format : resultFormats()) {
        endings += QLatin1Char('.') + QLatin1String(format.suffix);
    }
    return endings;
}

ResultFile::ResultFile(QString path, bool overwrite) : path_(std::move(path)), overwrite_(overwrite) {
    if (!isKnown(path_)) {
        raise(path_, Texts::tr("файлы пишутся с окончаниями %1").arg(endings().join(QStringLiteral(", "))));
    }
    requireFree();
    directory_ = makeDirectory(path_, [this] { return ResultDirectory::beside(path_); });
}

ResultFile::~ResultFile() = default;

void ResultFile::requireFree() const {
    const QFileInfo file(path_);
    if (file.exists() && (!overwrite_ || !file.isFile())) {
        raise(path_, file.isFile() ? Texts::tr("файл уже есть; с --overwrite он заменяется")
                                   : Texts::tr("имя занято не файлом"));
    }
    for (const QString& part : partsOf(file)) {
        if (!overwrite_ && QFileInfo::exists(part)) {
            raise(part, Texts::tr("файл уже есть; с --overwrite он заменяется"));
        }
    }
}

QStringList ResultFile::write(ResultRows& rows) {
    const QFileInfo file(path_);
    try {
        QStringList notes = writeLayer(rows, *formatOf(path_), directory_->filePath(file.fileName()),
                                       file.completeBaseName(), false)
                                .notes;
        for (QString& note : notes) {
            note.prepend(path_ + QStringLiteral(": "));
        }
        return notes;
    } catch (const std::exception& error) {
        raise(path_, QString::fromUtf8(error.what()));
    }
}

void ResultFile::publish() {
    requireFree();
    const QFileInfo file(path_);
    const QDir written(directory_->path());
    FileExchange exchange(directory_);
    try {
        QStringList stale = partsOf(file);
        for (const QString& name : written.entryList(QDir::Files)) {
            const QString place = file.absoluteDir().filePath(name);
            exchange.put(diskPath(written.filePath(name)), diskPath(place), overwrite_);
            stale.removeAll(place);
        }
        for (const QString& part : stale) {
            if (QFileInfo::exists(part)) {
                exchange.remove(diskPath(part));
            }
        }
        exchange.carryOut();
    } catch (const work::Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        raise(path_, QString::fromUtf8(error.what()));
    }
}

std::shared_ptr<LayerTable> addResultTable(dp::DataCatalog& catalog, const QString& name, ResultRows& rows) {
    const auto requireFree = [&] {
        if (catalog.dataObject(name)) {
            raise(name, Texts::tr("таблица уже есть"));
        }
    };
    requireFree();
    auto directory = makeDirectory(name, [] { return ResultDirectory::temporary(); });
    const QString path = directory->filePath(QStringLiteral("result.gpkg"));
    const QByteArray layerName("result");
    try {
        const auto written = writeLayer(rows, tableFormat, path, QString::fromUtf8(layerName), true);
        const auto pool =
            std::make_shared<DatasetPool>(DatasetPool::Source{path.toUtf8(), {}, std::move(directory), true});
        const auto lease = pool->acquire();
        LayerSchema schema = describeLayer(GDALDatasetGetLayer(lease.dataset(), 0));
        // The row numbers of the file are no column of the result; the types of the query are finer than the
        // format's.
        QVector<dp::AttributeDefinitionPointer> definitions = written.attributes;
        schema.columns.erase(schema.columns.begin());
        const bool hasGeometry = rows.geometryColumn() >= 0;
        if (hasGeometry) {
            definitions += schema.schema->attributes().last();
        }
        schema.schema = std::make_shared<const dp::TableSchema>(std::move(definitions));
        auto table = LayerTable::ofLayer(name, pool, 0, layerName, std::move(schema));
        requireFree();
        catalog.add(table);
        return table;
    } catch (const std::exception& error) {
        raise(name, QString::fromUtf8(error.what()));
    }
}

} // namespace orvane::files
