#pragma once

#include "host/providers/results/ResultRows.h"

#include <QVector>

namespace orvane::files {

/// A format that results are written in.
struct ResultFormat {
    const char* suffix; ///< of file names
    const char* driver;
    std::vector<const char*> datasetOptions; ///< "NAME=VALUE"
    std::vector<const char*> layerOptions;
    bool needsGeometry = false;
    int mostNameBytes = 0; ///< of a field, 0 for any number; as the next
    int mostTextBytes = 0; ///< of a value
    int realWidth = 0;     ///< characters of every real number, 0 where they are not written as text
    /// What says that nothing is known of the coordinate system, where the driver would assume one.
    const char* undefinedSystem = nullptr;
    bool indexLosesRows = false; ///< a spatial index leaves out rows without a geometry
};

/// The layer that writeLayer() has written.
struct WrittenLayer {
    QVector<dp::AttributeDefinitionPointer> attributes; ///< of the layer's fields in their order
    QStringList notes;                                  ///< what the format could not keep, for the user
};

/// Creates the file with the rows as its only layer. Names and texts that are too long for the format are cut
/// between two characters, names so that they stay different. What a format has no type for is written as
/// text: times and date-times in ISO form, bytes in hexadecimal digits; further geometry columns likewise as
/// well-known text where `keepsBlobs` is false, otherwise as blobs that functions understand. Curves stay
/// curves where the format has them. Throws std::runtime_error with GDAL's reason, also when the work was
/// cancelled; the file is then incomplete.
WrittenLayer writeLayer(ResultRows& rows, const ResultFormat& format, const QString& path,
                        const QString& layerName, bool keepsBlobs);

} // namespace orvane::files
