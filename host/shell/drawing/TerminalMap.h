#pragma once

#include "host/maps/Map.h"
#include "host/shell/maps/MapCanvas.h"

#include <string>

namespace orvane::shell {

/// The map in lines of text: outlines, lines and points as braille, eight dots a character. With colours
/// areas are the background of the characters, without them a pattern of dots, denser for higher classes. The
/// legend follows. The map is given the size that fits the space.
std::string terminalMap(maps::Map& map, const TerminalSpace& space);

} // namespace orvane::shell
