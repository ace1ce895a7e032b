#pragma once

#include <QByteArray>
#include <QString>

namespace orvane::files {

// Files that name other files. Each reference is looked up before GDAL opens the file: what lies below the
// folder of the file is opened, symbolic links followed; anything else is refused by std::runtime_error with
// the file and the reference. Paths are GDAL's.

/// Whether it describes tables whose rows lie in other files.
bool isVirtualDataset(const QString& path);

/// What describes the tables of a virtual dataset, in GDAL's XML, with the sources by their full paths: it is
/// opened in place of the file. Every source has opened on its own, as any file; queries among the sources
/// are refused, for their texts name files, too.
QByteArray confinedVirtualDataset(const QString& path);

/// Refuses what else a file refers to: external entities of XML, schemas that a schema includes, tables of a
/// MapInfo view.
void requireNearReferences(const QString& path);

} // namespace orvane::files
