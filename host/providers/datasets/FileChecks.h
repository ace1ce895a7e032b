#pragma once

#include <QByteArray>
#include <QString>

namespace orvane::files {

// What GDAL does not look at before it waits for ever or ends the process. Any thread.

/// Throws std::runtime_error, UTF-8 for the user, where a path or a file that drivers read along with it is a
/// pipe or a device: opening one waits for its other end. A path of GDAL's that is not on the disk passes.
void requireOrdinaryFile(const QByteArray& gdalPath);

/// Throws std::runtime_error, UTF-8 for the user, where a shape in a Shapefile, or in one in a folder, is not
/// of the kind that the file is of: GDAL ends the process when it writes such a shape, and it writes all
/// shapes when one is deleted. Any other file passes.
void requireShapesOfOneKind(const QString& path);

} // namespace orvane::files
