#pragma once

#include "host/providers/LayerTable.h"
#include "host/providers/results/ResultRows.h"
#include "platform/dp/DataCatalog.h"

#include <QString>

#include <memory>

namespace orvane::files {

class ResultDirectory;

/// A file that a result becomes. It is written in a directory of its own beside its place, which it takes at
/// the end: until then, and after a failure, nothing is there, or what was there before. Throws
/// std::runtime_error with path and cause. Used from one thread.
class ORVANE_FILES_EXPORT ResultFile {
public:
    /// Whether the file name has one of the endings below.
    static bool isKnown(const QString& path);
    /// ".gpkg", ".geojson", ...
    static QStringList endings();

    /// Throws for an unknown ending, for a file that exists unless `overwrite` allows to replace it, and for
    /// a directory that takes no files.
    ResultFile(QString path, bool overwrite);
    ~ResultFile();

    /// Writes the rows, as a layer named as the file. Types, coordinate system and curves are kept where the
    /// format has them; GeoJSON is written in WGS 84.
    /// What the format could not keep, other names and texts that were cut, is told by sentences for the
    /// user.
    QStringList write(ResultRows& rows);
    /// Puts the written file in its place: all of its parts, or none.
    void publish();

private:
    void requireFree() const;

    QString path_;
    bool overwrite_;
    std::shared_ptr<ResultDirectory> directory_;
};

/// Makes a result an open table of the catalogue: a GeoPackage in a temporary directory, which goes with the
/// table, so that memory stays bounded and the rows can be edited. Types, widths, geometry and coordinate
/// system are those of the query; a second geometry column holds blobs. The virtual table follows as for
/// every new object of the catalogue. Throws std::runtime_error: name taken, no room.
ORVANE_FILES_EXPORT std::shared_ptr<LayerTable> addResultTable(dp::DataCatalog& catalog, const QString& name,
                                                               ResultRows& rows);

} // namespace orvane::files
