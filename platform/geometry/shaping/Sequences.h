#pragma once

#include "platform/geometry/shapes/Shapes.h"

#include <functional>
#include <memory>

namespace orvane::geometry {

/// What a run of positions is to its geometry.
enum class Role { Position, Line, Shell, Hole };

/// The geometry, without curves, with other positions in every point, line and ring; what has no positions
/// then is left out, with a shell its holes. The system stays.
using SequenceMap = std::function<CoordinateSequence(const CoordinateSequence& positions, Role role)>;
std::shared_ptr<Geometry> withSequences(const Geometry& linear, const SequenceMap& map);

/// Twice the area within a ring, negative where it runs clockwise.
double doubledArea(const CoordinateSequence& ring);
CoordinateSequence reversedSequence(const CoordinateSequence& positions);

} // namespace orvane::geometry
