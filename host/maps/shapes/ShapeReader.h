#pragma once

#include "host/maps/Export.h"
#include "host/maps/shapes/FlatShape.h"
#include "platform/geometry/forms/GeometryWalker.h"

#include <string_view>
#include <vector>

namespace orvane::maps {

/// The bytes of a geometry, not owned: well-known binary, or what a SpatiaLite blob has behind its kind.
struct ShapeView {
    std::string_view bytes;
    geometry::Framing framing = geometry::Framing::Wkb;
    std::uint32_t kind = 0; ///< of SpatiaLite's content, which does not tell it
    bool littleEndian = true;

    static ShapeView ofWkb(std::string_view wkb) { return {wkb}; }
    static ShapeView ofSpatialite(std::uint32_t kind, std::string_view content, bool littleEndian) {
        return {content, geometry::Framing::Spatialite, kind, littleEndian};
    }
};

/// Reads shapes for drawing: x and y only, arcs as chords, without the positions that make no difference to
/// the eye. Keeps its memory from one shape to the next. Used from one thread at a time.
class ORVANE_MAPS_EXPORT ShapeReader {
public:
    /// Adds the parts of a shape to `out`. A position nearer than `tolerance` to the one before, in the units
    /// of the shape along both axes, is left out, ends excepted; 0 keeps all. Positions that are not finite
    /// are left out, too. False, with `out` as it was, for bytes that are no geometry.
    bool read(const ShapeView& view, double tolerance, FlatShape& out);

private:
    class Visitor;
    std::vector<double> positions_; ///< of the run at hand
};

} // namespace orvane::maps
