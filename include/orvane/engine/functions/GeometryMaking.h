#pragma once

#include <orvane/engine/Export.h>
#include <orvane/engine/functions/ScalarFunction.h>

/// Functions that make geometries of others, and of numbers. The user data is the EngineCache. NULL for NULL;
/// whatever else is no geometry, or none of the kind that is needed, is an error. Reentrant.
namespace orvane::engine {

/// geometry, distance [, units] [, quadrant segments] [, options]: geometry::buffer. The text behind the
/// units, or in their place where it has a "=", are options (geometry::bufferOptions); a number there is how
/// many segments a quarter of a circle has.
ORVANE_ENGINE_EXPORT ScalarFunction buffer;
/// geometry, distance, 1 for the left side and 0 for the right [, units]: the buffer of lines on one side.
ORVANE_ENGINE_EXPORT ScalarFunction singleSidedBuffer;

} // namespace orvane::engine
