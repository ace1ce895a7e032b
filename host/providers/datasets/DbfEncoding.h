#pragma once

#include <QByteArray>
#include <QString>

namespace orvane::files {

/// The character set of the attributes of a Shapefile, of a dBASE table, or of the first such in an archive
/// or a directory, where the file names none, found out from its first megabyte: UTF-8, CP1251, CP866 or
/// CP1252. Empty where the file names it, or has no character outside ASCII, and for other formats. GDAL's
/// path.
QByteArray encodingOfDbf(const QString& path);

} // namespace orvane::files
