#pragma once

#include "host/providers/datasets/GdalHandles.h"

#include <QByteArray>
#include <QString>

namespace orvane::files {

/// The name under which GDAL's drivers write a file of the disk so that no failure is lost: many look neither
/// at what a write gives back nor at the end, when the buffers are emptied. Each one is reported as an error
/// of GDAL's, on the thread that writes (GdalErrorScope). UTF-8; any thread.
QByteArray checkedPath(const QString& path);

/// A path in a message of GDAL's without what checkedPath() has put before it.
QString withoutCheckedPrefix(QString text);

/// While it lives, drivers put their temporary files beside a file: with a checked path they would take the
/// working directory. For this thread.
class TemporaryFilesBeside {
public:
    explicit TemporaryFilesBeside(const QString& path);

private:
    ThreadOption directory_;
};

} // namespace orvane::files
