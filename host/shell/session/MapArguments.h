#pragma once

#include "host/shell/maps/MapCanvas.h"

#include <optional>
#include <string>

namespace orvane::shell {

/// The format of a picture by the ending of its name; none for other files.
std::optional<PictureFormat> pictureFormatOf(const QString& path);
/// ".png", ...
QStringList pictureEndings();

/// What the command line says of a map; empty where it says nothing.
struct MapArguments {
    std::string size, system, classes;
};

/// Throws UsageError.
MapOptions parseMapOptions(const MapArguments& arguments);

} // namespace orvane::shell
