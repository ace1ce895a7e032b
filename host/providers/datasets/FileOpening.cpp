#include "host/providers/datasets/FileOpening.h"

#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/References.h"
#include "host/providers/datasets/SqliteConfinement.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <gdal_priv.h>

#include <stdexcept>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::FileOpening)
};

/// Everything of theirs lies in the file, or in files of its name beside it.
const QList<QByteArray> selfContained{"ESRI Shapefile",
                                      "GPKG",
                                      "GeoJSON",
                                      "GeoJSONSeq",
                                      "FlatGeobuf",
                                      "SQLite",
                                      "CSV",
                                      "OpenFileGDB",
                                      "GPX",
                                      "LIBKML",
                                      "KML",
                                      "DXF",
                                      "TopoJSON",
                                      "ESRIJSON",
                                      "XLSX",
                                      "XLS",
                                      "ODS",
                                      "OSM",
                                      "S57",
                                      "DGN",
                                      "CAD",
                                      "GeoRSS",
                                      "OGR_GMT",
                                      "MapML",
                                      "JML",
                                      "MVT",
                                      "SVG",
                                      "PDF",
                                      "SXF",
                                      "TIGER",
                                      "UK .NTF",
                                      "VDV",
                                      "AVCE00",
                                      "WAsP",
                                      "Selafin",
                                      "Idrisi",
                                      "LVBAG",
                                      "Geoconcept",
                                      "Interlis 1",
                                      "Arrow",
                                      "Parquet"};
/// Their files may refer to others, which is looked at before.
const QList<QByteArray> checked{"GML", "MapInfo File", "NAS", "Interlis 2"};
const QList<QByteArray> virtualDatasets{"OGR_VRT"};

/// All formats of tables but some.
QList<QByteArray> allBut(const QList<QByteArray>& left) {
    QList<QByteArray> names;
    for (int i = 0; i < GDALGetDriverCount(); ++i) {
        const GDALDriverH driver = GDALGetDriver(i);
        const QByteArray name(GDALGetDriverShortName(driver));
        if (GDALGetMetadataItem(driver, GDAL_DCAP_VECTOR, nullptr) && !left.contains(name)) {
            names.append(name);
        }
    }
    return names;
}

/// Drivers may be null for all.
DatasetHandle openWith(const QList<QByteArray>* drivers, const QByteArray& name, unsigned flags,
                       const QList<QByteArray>& options, QString& reason) {
    const auto allowed = pointersTo(drivers ? *drivers : QList<QByteArray>());
    constexpr int mostTries = 20;
    for (int tries = 1;; ++tries) {
        const GdalErrorScope errors;
        DatasetHandle dataset(GDALOpenEx(name.constData(), GDAL_OF_VECTOR | flags,
                                         drivers ? allowed.data() : nullptr, pointersTo(options).data(),
                                         nullptr));
        if (dataset || tries == mostTries || !saysUnconfined(errors.error())) {
            reason = dataset ? QString() : errors.error();
            return dataset;
        }
        beginConfiningDatabases();
        endConfiningDatabases();
    }
}

/// A file's name that GDAL does not take for a connection, an option or a text.
QByteArray asFileName(const QByteArray& path) {
    const bool isPlain = path.startsWith('/') || (!path.contains(':') && !path.startsWith('<') &&
                                                  !path.startsWith('{') && !path.startsWith('['));
    return isPlain ? path : "./" + path;
}

/// Says so where a format knows the file that is not opened by itself.
void raiseIfReferring(const QByteArray& path) {
    if (const QByteArray format = referringFormatOf(path); !format.isEmpty()) {
        throw std::runtime_error(Texts::tr("«%1»: формат %2 отсылает к другим файлам или в сеть; он "
                                           "открывается с --trust-references")
                                     .arg(QString::fromUtf8(path), QString::fromLatin1(format))
                                     .toStdString());
    }
}

DatasetHandle openFile(const QByteArray& path, unsigned flags, const QList<QByteArray>& options,
                       QString& reason) {
    auto dataset = openWith(&selfContained, path, flags, options, reason);
    if (dataset || !reason.isEmpty()) {
        return dataset;
    }
    const QString name = QString::fromUtf8(path);
    if (isVirtualDataset(name)) {
        return openWith(&virtualDatasets, confinedVirtualDataset(name), flags | GDAL_OF_VERBOSE_ERROR,
                        options, reason);
    }
    requireNearReferences(name);
    dataset = openWith(&checked, path, flags, options, reason);
    if (!dataset && reason.isEmpty()) {
        raiseIfReferring(path);
    }
    return dataset;
}

} // namespace

std::vector<const char*> pointersTo(const QList<QByteArray>& texts) {
    std::vector<const char*> pointers;
    for (const auto& text : texts) {
        pointers.push_back(text.constData());
    }
    pointers.push_back(nullptr);
    return pointers;
}

Reach reachOf(const QByteArray& path, bool trustsReferences) {
    if (trustsReferences) {
        return Reach::Everything;
    }
    const bool isFile = path.startsWith("/vsi") || QFileInfo::exists(QString::fromUtf8(path));
    return isFile ? Reach::OwnFolder : Reach::NamedSource;
}

DatasetHandle openFileWithin(Reach reach, const QByteArray& path, unsigned flags,
                             const QList<QByteArray>& options, QString& reason) {
    // Such views and triggers fail for want of the functions, the rest of the database opens.
    const ThreadOption opensAll("ALLOW_OGR_SQL_FUNCTIONS_FROM_TRIGGER_AND_VIEW", "YES");
    if (reach == Reach::Everything) {
        return openWith(nullptr, path, flags | GDAL_OF_VERBOSE_ERROR, options, reason);
    }
    const Confinement confinement(reach, path);
    const auto confining = options + QList<QByteArray>{QByteArray(sqlitePrelude) + '=' + confiningStatement};
    if (reach == Reach::OwnFolder) {
        return openFile(asFileName(path), flags, confining, reason);
    }
    // A URL, a database, a service. The driver of URLs would give what it fetches to any other one.
    static const QList<QByteArray> drivers = allBut(virtualDatasets + QList<QByteArray>{"HTTP"});
    return openWith(&drivers, path, flags | GDAL_OF_VERBOSE_ERROR, confining, reason);
}

QByteArray referringFormatOf(const QByteArray& path) {
    static const QList<QByteArray> others = allBut(selfContained + checked + virtualDatasets);
    GDALOpenInfo file(path.constData(), GDAL_OF_VECTOR);
    for (const QByteArray& name : others) {
        // The function for handles opens the file where a driver is not sure.
        GDALDriver* const driver = GDALDriver::FromHandle(GDALGetDriverByName(name.constData()));
        if (driver->pfnIdentify && driver->pfnIdentify(&file) > 0) {
            return name;
        }
    }
    return {};
}

bool isVirtual(GDALDatasetH dataset) {
    return virtualDatasets.contains(GDALGetDriverShortName(GDALGetDatasetDriver(dataset)));
}

} // namespace orvane::files
