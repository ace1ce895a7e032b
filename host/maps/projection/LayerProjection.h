#pragma once

#include "host/maps/Export.h"
#include "host/maps/projection/Clipping.h"
#include "host/maps/projection/MapPlane.h"
#include "host/maps/projection/ProjectionGrid.h"
#include "host/maps/projection/View.h"
#include "platform/cs/Transformer.h"

#include <optional>

namespace orvane::maps {

/// Takes positions of a layer into the plane of a map and back. Belongs to the thread that made it.
class ORVANE_MAPS_EXPORT PlaneProjection {
public:
    /// Without one of the systems, and within one projected system, positions stay as they are. Throws
    /// std::runtime_error, for the user, when there is no way between the systems.
    PlaneProjection(std::shared_ptr<const cs::CoordSystem> layer, std::shared_ptr<const cs::CoordSystem> map);

    bool isDirect() const { return isDirect_; }
    /// Whether the layer is in longitude and latitude; false where isDirect().
    bool isLayerGeographic() const { return !toDegrees_; }
    bool isMapGeographic() const { return isMapGeographic_; }
    const MapPlane& plane() const { return plane_; }

    // In place, x and y in turn; a position without an image becomes infinite. Not where isDirect().

    void toDegrees(double* ordinates, std::size_t count) const;
    void fromDegrees(double* ordinates, std::size_t count) const;
    void backToDegrees(double* ordinates, std::size_t count) const;

    // One position, whatever the systems.

    std::optional<QPointF> toPlane(QPointF position) const;
    std::optional<QPointF> toLayer(QPointF position) const;

private:
    bool isDirect_ = true;
    bool isMapGeographic_ = false;
    MapPlane plane_;
    std::shared_ptr<const cs::CoordSystem> layer_, map_;
    std::shared_ptr<const cs::CoordSystem> degrees_; ///< the geographic system between the two
    std::shared_ptr<const cs::Transformer> toDegrees_, fromDegrees_, back_, toLayer_;
};

/// Takes shapes of a layer into a picture: cuts what the projection tears apart or cannot show and what is
/// out of sight, and follows the curves that straight lines become. Belongs to the thread that made it.
class ORVANE_MAPS_EXPORT LayerProjection {
public:
    /// As PlaneProjection.
    LayerProjection(std::shared_ptr<const cs::CoordSystem> layer, std::shared_ptr<const cs::CoordSystem> map,
                    const View& view);

    /// The distance in units of the layer that is too small to be seen anywhere in the view.
    double tolerance() const { return tolerance_; }
    /// What of the layer can be seen, in its own units, with some more around it; everything where that is
    /// not a rectangle.
    const geometry::Envelope& visible() const { return visible_; }
    /// Replaces the shape by what is to be drawn, in pixels.
    void toPixels(FlatShape& shape);
    /// A position of the layer in pixels; none when it has no place on the map.
    std::optional<QPointF> toPixel(QPointF position) const;
    /// Which position of the layer is at a pixel; none beyond the globe.
    std::optional<QPointF> toLayer(QPointF pixel) const;

private:
    void findVisible();
    void findTolerance();
    void addDirect(const FlatShape& shape);
    void toDegrees(FlatShape& shape);
    void addUnrolled(const FlatShape& shape, const FlatShape::Part& part);
    void addPoint(const double* position, PartKind kind);
    void addShifted(PartKind kind);
    void addDense(const FlatShape& from, double step, FlatShape& to) const;
    void project(FlatShape& shape);

    PlaneProjection projection_;
    View view_;
    geometry::Envelope window_;  ///< in degrees, of the central meridian plus and minus; or of the plane
    geometry::Envelope visible_; ///< in units of the layer
    double step_ = 1;            ///< longest straight segment in degrees
    double layerStep_ = 0;       ///< the same in units of a projected layer
    double tolerance_ = 0;
    std::vector<double> unrolled_;
    Clipping clipping_;
    ProjectionGrid grid_;
    FlatShape cut_, dense_;
};

} // namespace orvane::maps
