#include "platform/geometry/shapes/Arc.h"

#include <cmath>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr double fullTurn = 2.0 * std::numbers::pi;

/// The angle brought into [0, 2 pi).
double positiveAngle(double angle) {
    const double turned = std::fmod(angle, fullTurn);
    return turned < 0.0 ? turned + fullTurn : turned;
}

} // namespace

std::optional<Arc> Arc::through(const double* begin, const double* middle, const double* end) {
    // Relative to the begin, which keeps digits where coordinates are large and the arc is small.
    const double mx = middle[0] - begin[0];
    const double my = middle[1] - begin[1];
    const double ex = end[0] - begin[0];
    const double ey = end[1] - begin[1];
    if (ex == 0.0 && ey == 0.0) {
        const double radius = std::hypot(mx, my) / 2.0;
        if (!(radius > 0.0) || !std::isfinite(radius)) {
            return std::nullopt;
        }
        return Arc{begin[0] + mx / 2.0, begin[1] + my / 2.0, radius, std::atan2(-my, -mx), fullTurn};
    }
    const double determinant = 2.0 * (mx * ey - my * ex);
    const double middleSquare = mx * mx + my * my;
    const double endSquare = ex * ex + ey * ey;
    const double cx = (ey * middleSquare - my * endSquare) / determinant;
    const double cy = (mx * endSquare - ex * middleSquare) / determinant;
    const double radius = std::hypot(cx, cy);
    // Flatter than one part in 10^14 of the radius is straight.
    if (!std::isfinite(radius) || std::abs(determinant) <= 1e-14 * (middleSquare + endSquare)) {
        return std::nullopt;
    }
    const double startAngle = std::atan2(-cy, -cx);
    const double toEnd = positiveAngle(std::atan2(ey - cy, ex - cx) - startAngle);
    return Arc{begin[0] + cx, begin[1] + cy, radius, startAngle,
               determinant > 0.0 ? toEnd : toEnd - fullTurn};
}

double Arc::length() const {
    return radius * std::abs(sweep);
}

double Arc::segmentArea() const {
    return radius * radius * (sweep - std::sin(sweep)) / 2.0;
}

void Arc::addTo(Envelope& envelope) const {
    const double low = std::min(startAngle, startAngle + sweep);
    const double high = std::max(startAngle, startAngle + sweep);
    const double quarter = fullTurn / 4.0;
    for (double turns = std::ceil(low / quarter); turns * quarter <= high; ++turns) {
        const int direction = ((static_cast<int>(turns) % 4) + 4) % 4;
        constexpr double cosines[] = {1, 0, -1, 0};
        constexpr double sines[] = {0, 1, 0, -1};
        envelope.add(centreX + radius * cosines[direction], centreY + radius * sines[direction]);
    }
}

std::size_t segmentCount(double sweep, double radius, QSizeF tolerance) {
    constexpr double relativeDeviation = 1e-4;
    constexpr double most = 65536.0;
    double deviation = std::min(tolerance.width(), tolerance.height());
    deviation = deviation > 0.0 && std::isfinite(deviation) ? deviation / radius : relativeDeviation;
    // A chord over the angle h leaves the circle of radius 1 by 1 - cos(h / 2); never more than a quarter
    // turn.
    const double step = deviation < 0.29 ? 2.0 * std::acos(1.0 - deviation) : fullTurn / 4.0;
    const double count = std::ceil(std::abs(sweep) / std::max(step, fullTurn / most) - 1e-9);
    return static_cast<std::size_t>(std::clamp(count, 1.0, most));
}

void appendArcs(const CoordinateSequence& arcs, QSizeF tolerance, std::vector<double>& out) {
    const std::size_t stride = arcs.stride();
    const auto append = [&](const double* position) { out.insert(out.end(), position, position + stride); };
    for (std::size_t i = 0; i + 2 < arcs.size(); i += 2) {
        const double* begin = arcs.position(i);
        const double* middle = arcs.position(i + 1);
        const double* end = arcs.position(i + 2);
        const auto arc = Arc::through(begin, middle, end);
        if (!arc) {
            append(middle);
            append(end);
            continue;
        }
        const double toMiddle = std::remainder(
            std::atan2(middle[1] - arc->centreY, middle[0] - arc->centreX) - arc->startAngle, fullTurn);
        const double middleSweep =
            arc->sweep > 0.0 ? positiveAngle(toMiddle) : positiveAngle(toMiddle) - fullTurn;
        const std::size_t count = segmentCount(arc->sweep, arc->radius, tolerance);
        for (std::size_t k = 1; k < count; ++k) {
            const double swept = arc->sweep * static_cast<double>(k) / static_cast<double>(count);
            out.push_back(arc->centreX + arc->radius * std::cos(arc->startAngle + swept));
            out.push_back(arc->centreY + arc->radius * std::sin(arc->startAngle + swept));
            const bool before = std::abs(swept) <= std::abs(middleSweep);
            const double part =
                before ? swept / middleSweep : (swept - middleSweep) / (arc->sweep - middleSweep);
            const double* from = before ? begin : middle;
            const double* to = before ? middle : end;
            for (std::size_t ordinate = 2; ordinate < stride; ++ordinate) {
                out.push_back(from[ordinate] + part * (to[ordinate] - from[ordinate]));
            }
        }
        append(end);
    }
}

} // namespace orvane::geometry
