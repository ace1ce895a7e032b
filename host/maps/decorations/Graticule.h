#pragma once

#include "host/maps/projection/LayerProjection.h"

#include <QColor>
#include <QPainter>

namespace orvane::maps {

/// Whether a view of a projection that shows the whole globe has its outline in sight.
ORVANE_MAPS_EXPORT bool showsGlobe(const std::shared_ptr<cs::CoordSystem>& map, const View& view);
/// Fills the globe.
ORVANE_MAPS_EXPORT void drawGlobe(QPainter& painter, const std::shared_ptr<cs::CoordSystem>& map,
                                  const View& view, const QColor& fill, const QColor& outline);
/// Meridians and parallels at round distances, about six on the picture's longer side. Nothing without a
/// system.
ORVANE_MAPS_EXPORT void drawGraticule(QPainter& painter, const std::shared_ptr<cs::CoordSystem>& map,
                                      const View& view, const QColor& colour);

} // namespace orvane::maps
