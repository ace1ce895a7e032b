#pragma once

#include <QString>
#include <QStringList>

namespace orvane::files {

// Archives (.zip), which GDAL reads without unpacking them. Paths within one are GDAL's: a prefix, the
// archive, the file in it.

bool isArchive(const QString& path);
/// GDAL's path of an archive, or of any other file the path itself.
QString pathForGdal(const QString& path);
/// GDAL's paths of the files in an archive or a directory, in the order of their names, without what other
/// systems put beside them.
QStringList filesIn(const QString& gdalPath);
/// GDAL's paths of the text tables (.csv, .tsv, .psv) in an archive, in the order of their names.
QStringList textTablesIn(const QString& archive);
bool isTextTableName(const QString& path);

/// Whether GDAL's path lies in an archive.
bool isInArchive(const QString& gdalPath);
/// What stands on the disk for GDAL's path: the archive of one that lies in an archive.
QString pathOnDisk(const QString& gdalPath);

} // namespace orvane::files
