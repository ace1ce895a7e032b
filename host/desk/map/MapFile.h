#pragma once

#include "host/desk/map/MapPicture.h"

#include <QString>

namespace orvane::desk {

/// The endings of map files: "png", "svg", "pdf".
QStringList mapFileEndings();

/// Draws a picture into a file, whose ending says the form. The file takes its place when it is whole; false
/// when `goesOn` has ended the drawing. Throws std::runtime_error with path and cause. Any thread.
bool writeMap(const QString& path, const MapPicture& picture, const std::function<bool()>& goesOn);

} // namespace orvane::desk
