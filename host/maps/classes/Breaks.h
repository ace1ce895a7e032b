#pragma once

#include "host/maps/Export.h"

#include <vector>

namespace orvane::maps {

/// How numbers are put into classes.
enum class ClassMethod {
    Quantiles,      ///< about as many values in each
    EqualIntervals, ///< equally wide
    NaturalBreaks   ///< so that values of one class are near each other (Fisher and Jenks)
};

/// The least numbers of all classes but the first, ascending, round where that moves few values or none.
/// `sorted` are the values in ascending order. There are fewer than `classes - 1` where the values do not
/// allow for more, none for a single value.
ORVANE_MAPS_EXPORT std::vector<double> classBreaks(const std::vector<double>& sorted, ClassMethod method,
                                                   int classes);

/// The number between two, both included, with the fewest digits.
ORVANE_MAPS_EXPORT double roundestWithin(double least, double greatest);

} // namespace orvane::maps
