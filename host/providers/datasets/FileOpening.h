#pragma once

#include "host/providers/datasets/Confinement.h"
#include "host/providers/datasets/GdalHandles.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <vector>

namespace orvane::files {

/// How far a file reaches that the user names by `path`, UTF-8.
Reach reachOf(const QByteArray& path, bool trustsReferences);

/// Opens a file with GDAL. Formats that keep their rows in the file, and in those of its name beside it, open
/// as they are. What others refer to has to lie below the folder of the file; formats that are databases,
/// services or containers of references open only where the user's words name them or `reach` is everything.
///
/// Null where GDAL does not open it, for the `reason`, if it has one.
/// Throws std::runtime_error for a reference or a format that is refused.
DatasetHandle openFileWithin(Reach reach, const QByteArray& path, unsigned flags,
                             const QList<QByteArray>& options, QString& reason);

/// The format of a file that does not open by itself, by GDAL's name; empty where none knows the file.
QByteArray referringFormatOf(const QByteArray& path);

/// Null-terminated, for GDAL. The texts have to stay.
std::vector<const char*> pointersTo(const QList<QByteArray>& texts);

/// Whether the rows lie in other files than the dataset's own.
bool isVirtual(GDALDatasetH dataset);

} // namespace orvane::files
