#include "host/providers/datasets/Archive.h"

#include "host/providers/datasets/GdalErrors.h"

#include <QFileInfo>

#include <cpl_string.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <memory>

namespace orvane::files {

namespace {

const QLatin1String PREFIX("/vsizip/");
const QLatin1String ENDING(".zip");

struct ListDestroyer {
    void operator()(char** list) const { CSLDestroy(list); }
};

/// What other systems put beside the files: Finder's attributes, hidden files.
bool isByproduct(const QString& entry) {
    return entry.startsWith(QLatin1String("__MACOSX/")) ||
           entry.section(QLatin1Char('/'), -1).startsWith(QLatin1Char('.'));
}

} // namespace

bool isArchive(const QString& path) {
    return path.endsWith(ENDING, Qt::CaseInsensitive) && QFileInfo(path).isFile();
}

QString pathForGdal(const QString& path) {
    return isArchive(path) ? PREFIX + QFileInfo(path).absoluteFilePath() : path;
}

QStringList filesIn(const QString& gdalPath) {
    QStringList paths;
    const GdalErrorScope errors;
    const std::unique_ptr<char*, ListDestroyer> entries(VSIReadDirRecursive(gdalPath.toUtf8().constData()));
    for (int i = 0; i < CSLCount(entries.get()); ++i) {
        const auto entry = QString::fromUtf8(entries.get()[i]);
        if (!isByproduct(entry)) {
            paths.append(gdalPath + QLatin1Char('/') + entry);
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

QStringList textTablesIn(const QString& archive) {
    QStringList paths = isArchive(archive) ? filesIn(pathForGdal(archive)) : QStringList();
    paths.erase(std::remove_if(paths.begin(), paths.end(),
                               [](const QString& path) { return !isTextTableName(path); }),
                paths.end());
    return paths;
}

bool isTextTableName(const QString& path) {
    static const QStringList endings{QStringLiteral("csv"), QStringLiteral("tsv"), QStringLiteral("psv")};
    return endings.contains(QFileInfo(path).suffix().toLower());
}

bool isInArchive(const QString& gdalPath) {
    return gdalPath.startsWith(PREFIX);
}

QString pathOnDisk(const QString& gdalPath) {
    if (!isInArchive(gdalPath)) {
        return gdalPath;
    }
    const QString path = gdalPath.mid(PREFIX.size());
    for (int end = path.indexOf(ENDING, 0, Qt::CaseInsensitive); end >= 0;
         end = path.indexOf(ENDING, end + 1, Qt::CaseInsensitive)) {
        const QString archive = path.left(end + ENDING.size());
        if (isArchive(archive)) {
            return archive;
        }
    }
    return path;
}

} // namespace orvane::files
