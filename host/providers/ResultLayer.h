#pragma once

#include "host/providers/ResultRows.h"

#include <QVector>

namespace orvane::files {

/// A format that results are written in.
struct ResultFormat {
    const char* suffix; ///< of file names
    const char* driver;
    std::vector<const char*> datasetOptions; ///< "NAME=VALUE"
    std::vector<const char*> layerOptions;
    bool needsGeometry = false;
};

/// Creates the file with the rows as its only layer, and returns the attributes of the layer's fields in
/// their order. What a format has no type for is written as text: times and date-times in ISO form, bytes in
/// hexadecimal digits; further geometry columns likewise as well-known text where `keepsBlobs` is false,
/// otherwise as blobs that functions understand. Curves stay curves where the format has them. Throws
/// std::runtime_error with GDAL's reason, also when the work was cancelled; the file is then incomplete.
QVector<dp::AttributeDefinitionPointer> writeLayer(ResultRows& rows, const ResultFormat& format,
                                                   const QString& path, const QString& layerName,
                                                   bool keepsBlobs);

} // namespace orvane::files
