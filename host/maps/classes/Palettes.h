#pragma once

#include "host/maps/Export.h"

#include <QColor>

#include <vector>

namespace orvane::maps {

// Colours that most people who see colours differently tell apart as well.

/// From light to dark, for numbers from small to large; from less light where they are not for areas.
ORVANE_MAPS_EXPORT std::vector<QColor> sequentialColours(int count, bool isForAreas = true);
/// From dark over light to dark for numbers on both sides of zero: `below` classes and `above`.
ORVANE_MAPS_EXPORT std::vector<QColor> divergingColours(int below, int above);
/// Of categories, at most eight.
ORVANE_MAPS_EXPORT std::vector<QColor> categoryColours(int count);
/// What has no value, or belongs to none of the categories that have a colour.
ORVANE_MAPS_EXPORT QColor noValueColour();
ORVANE_MAPS_EXPORT QColor otherValueColour();

} // namespace orvane::maps
