#include "host/desk/map/MapPicking.h"

#include <host/maps/projection/LayerProjection.h>
#include <platform/geometry/forms/GeometryFactory.h>
#include <platform/geometry/relations/Relations.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::desk {

namespace {

constexpr double reachPixels = 5;

geometry::GeometryPtr shapeOf(const Value& value) {
    try {
        return geometry::GeometryFactory::fromWkb(value.bytes, nullptr);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

/// Passes the rows whose boxes meet an area, in units of the layer.
template<class Visit>
void forEachNear(const MapLayer& layer, const geometry::Envelope& area, Visit visit) {
    const int column = layer.features->geometryColumn();
    if (column < 0 || area.isEmpty()) {
        return;
    }
    for (const auto& block : layer.features->blocks()) {
        for (int row = 0; row < block->size(); ++row) {
            if (block->box(row).intersects(area)) {
                const Value value = block->value(row, column);
                if (value.kind == Value::Kind::Geometry) {
                    visit(*block, row, value);
                }
            }
        }
    }
}

/// The layer's positions around a rectangle of pixels: its corners and the middles of its sides.
std::vector<QPointF> outline(const maps::LayerProjection& projection, const QRectF& pixels) {
    std::vector<QPointF> positions;
    const QPointF centre = pixels.center();
    for (const QPointF& pixel :
         {pixels.topLeft(), QPointF(centre.x(), pixels.top()), pixels.topRight(),
          QPointF(pixels.right(), centre.y()), pixels.bottomRight(), QPointF(centre.x(), pixels.bottom()),
          pixels.bottomLeft(), QPointF(pixels.left(), centre.y())}) {
        if (const auto position = projection.toLayer(pixel)) {
            positions.push_back(*position);
        }
    }
    return positions;
}

geometry::Envelope envelopeOf(const std::vector<QPointF>& positions) {
    geometry::Envelope envelope;
    for (const QPointF& position : positions) {
        envelope.add(position.x(), position.y());
    }
    return envelope;
}

Numbers pickAt(const MapLayer& layer, const maps::LayerProjection& projection, QPointF pixel) {
    const auto at = projection.toLayer(pixel);
    if (!at) {
        return {};
    }
    const QPointF reach(reachPixels + layer.style.pointRadius, reachPixels + layer.style.pointRadius);
    const auto around = envelopeOf(outline(projection, QRectF(pixel - reach, pixel + reach)));
    const geometry::Point point(at->x(), at->y());
    double nearest = std::max(around.maxX - around.minX, around.maxY - around.minY) / 2;
    Numbers found;
    forEachNear(layer, around, [&](const RowBlock& block, int row, const Value& value) {
        const auto shape = shapeOf(value);
        if (!shape) {
            return;
        }
        try {
            if (const double distance = geometry::planarDistance(*shape, point); distance <= nearest) {
                nearest = distance;
                found = {layer.idOf(block, row)};
            }
        } catch (const std::runtime_error&) {
            return; // a shape that GEOS does not measure cannot be hit
        }
    });
    return found;
}

Numbers pickWithin(const MapLayer& layer, const maps::LayerProjection& projection, const QRectF& pixels) {
    const std::vector<QPointF> border = outline(projection, pixels);
    const geometry::Envelope area = envelopeOf(border);
    if (border.size() < 3) {
        return {};
    }
    const geometry::CoordinateSequence ring(geometry::Dimensions::XY, border.size() + 1, [&](double* to) {
        for (std::size_t i = 0; i <= border.size(); ++i) {
            *to++ = border[i % border.size()].x();
            *to++ = border[i % border.size()].y();
        }
    });
    const geometry::Polygon rectangle(geometry::Dimensions::XY, {ring});
    Numbers found;
    forEachNear(layer, area, [&](const RowBlock& block, int row, const Value& value) {
        const auto shape = shapeOf(value);
        try {
            if (shape && geometry::Intersects(rectangle, *shape)) {
                found.push_back(layer.idOf(block, row));
            }
        } catch (const std::runtime_error&) {
            return;
        }
    });
    std::sort(found.begin(), found.end());
    return found;
}

/// From the uppermost layer on, until one has something.
template<class Pick>
PickedFeatures pickFirst(const MapPicture& picture, Pick pick) {
    for (auto layer = picture.layers.rbegin(); layer != picture.layers.rend(); ++layer) {
        const maps::LayerProjection projection(layer->features->coordSystem(), picture.system, picture.view);
        if (Numbers ids = pick(*layer, projection); !ids.empty()) {
            return {&*layer, std::move(ids)};
        }
    }
    return {};
}

} // namespace

PickedFeatures pickAt(const MapPicture& picture, QPointF pixel) {
    return pickFirst(picture, [pixel](const MapLayer& layer, const maps::LayerProjection& projection) {
        return pickAt(layer, projection, pixel);
    });
}

PickedFeatures pickWithin(const MapPicture& picture, const QRectF& pixels) {
    return pickFirst(picture, [&pixels](const MapLayer& layer, const maps::LayerProjection& projection) {
        return pickWithin(layer, projection, pixels);
    });
}

} // namespace orvane::desk
