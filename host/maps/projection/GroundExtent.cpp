#include "host/maps/projection/GroundExtent.h"

#include "host/maps/projection/Antimeridian.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

void GroundExtent::add(const FlatShape& shape) {
    for (const FlatShape::Part& part : shape.parts) {
        const geometry::Envelope envelope = shape.envelopeOf(part);
        // Positions that go to and fro over the antimeridian leave the middle free.
        if (envelope.maxX - envelope.minX <= 270) {
            add(envelope.minX, envelope.minY, envelope.maxX, envelope.maxY);
            continue;
        }
        const double* before = shape.position(part.begin);
        for (std::uint32_t i = 0; i < part.count; ++i) {
            const double* position = shape.position(part.begin + i);
            const bool isStep = isOverAntimeridian(position[0] - before[0]);
            add(isStep ? position[0] : std::min(position[0], before[0]), std::min(position[1], before[1]),
                isStep ? position[0] : std::max(position[0], before[0]), std::max(position[1], before[1]));
            before = position;
        }
    }
}

void GroundExtent::add(double west, double south, double east, double north) {
    if (!(south <= 90 && north >= -90 && west <= east && std::abs(west) < 1e6)) {
        return;
    }
    south_ = std::min(south_, std::max(south, -90.0));
    north_ = std::max(north_, std::min(north, 90.0));
    // An edge that lies on a whole degree belongs to the side where the rectangle is.
    const double first = std::floor(west + 180);
    const double last = std::max(first, std::ceil(east + 180) - 1);
    for (double degree = first; degree <= std::min(last, first + 359); ++degree) {
        occupied_.set(static_cast<std::size_t>(degree - 360 * std::floor(degree / 360)));
    }
}

GroundExtent::Gap GroundExtent::widestGap() const {
    Gap widest{0, 0};
    Gap current{0, 0};
    for (int i = 0; i < 720; ++i) {
        if (occupied_.test(static_cast<std::size_t>(i % 360))) {
            current = {i + 1, 0};
        } else if (++current.width > widest.width && current.width <= 360) {
            widest = current;
        }
    }
    return widest;
}

double GroundExtent::west() const {
    const Gap gap = widestGap();
    const int begin = (gap.begin + gap.width) % 360;
    return gap.width == 0 ? -180 : begin - 180;
}

double GroundExtent::width() const {
    return 360 - widestGap().width;
}

} // namespace orvane::maps
