#include "host/maps/projection/Clipping.h"

#include <utility>

namespace orvane::maps {

void Clipping::cut(int axis, double bound, bool isUpper) {
    cut_.clear();
    const std::size_t size = ring_.size();
    const auto excess = [&](std::size_t i) {
        const double value = ring_[i + static_cast<std::size_t>(axis)];
        return isUpper ? value - bound : bound - value;
    };
    for (std::size_t i = 0, before = size - 2; i < size; before = i, i += 2) {
        const double here = excess(i);
        const double there = excess(before);
        if ((here > 0) != (there > 0)) {
            const double part = there / (there - here);
            double crossing[2];
            for (int k = 0; k < 2; ++k) {
                const double from = ring_[before + static_cast<std::size_t>(k)];
                crossing[k] =
                    k == axis ? bound : from + part * (ring_[i + static_cast<std::size_t>(k)] - from);
            }
            cut_.insert(cut_.end(), crossing, crossing + 2);
        }
        if (here <= 0) {
            cut_.insert(cut_.end(), {ring_[i], ring_[i + 1]});
        }
    }
    std::swap(ring_, cut_);
}

void Clipping::addRing(const double* ordinates, std::uint32_t count, const geometry::Envelope& box,
                       PartKind kind, FlatShape& out) {
    ring_.assign(ordinates, ordinates + std::size_t{2} * count);
    const double bounds[2][2] = {{box.minX, box.maxX}, {box.minY, box.maxY}};
    for (int side = 0; side < 4 && ring_.size() >= 6; ++side) {
        cut(side / 2, bounds[side / 2][side % 2], side % 2 == 1);
    }
    if (ring_.size() >= 6) {
        const std::uint32_t begin = out.size();
        out.ordinates.insert(out.ordinates.end(), ring_.begin(), ring_.end());
        out.endPart(kind, begin);
    }
}

namespace {

/// The part of a segment within the box, as shares of its length (Liang and Barsky).
bool shareWithin(const double* from, const double* to, const geometry::Envelope& box, double& begin,
                 double& end) {
    begin = 0;
    end = 1;
    const double lower[2] = {box.minX, box.minY};
    const double upper[2] = {box.maxX, box.maxY};
    for (int axis = 0; axis < 2; ++axis) {
        const double step = to[axis] - from[axis];
        double enter = lower[axis] - from[axis];
        double leave = upper[axis] - from[axis];
        if (step == 0) {
            if (enter > 0 || leave < 0) {
                return false;
            }
            continue;
        }
        enter /= step;
        leave /= step;
        if (enter > leave) {
            std::swap(enter, leave);
        }
        begin = enter > begin ? enter : begin;
        end = leave < end ? leave : end;
    }
    return begin <= end;
}

} // namespace

void Clipping::addLine(const double* ordinates, std::uint32_t count, bool isClosed,
                       const geometry::Envelope& box, PartKind kind, IsSeam isSeam, FlatShape& out) {
    std::uint32_t pieceBegin = out.size();
    bool isOpen = false;
    const auto finish = [&] {
        if (isOpen) {
            out.endPart(kind, pieceBegin);
        }
        isOpen = false;
    };
    const std::uint32_t segments = count == 0 ? 0 : isClosed ? count : count - 1;
    for (std::uint32_t i = 0; i < segments; ++i) {
        const double* from = ordinates + std::size_t{2} * i;
        const double* to = ordinates + std::size_t{2} * ((i + 1) % count);
        double begin = 0;
        double end = 1;
        if ((isSeam && isSeam(from, to)) || !shareWithin(from, to, box, begin, end)) {
            finish();
            continue;
        }
        if (begin > 0 || !isOpen) {
            finish();
            pieceBegin = out.size();
            isOpen = true;
            out.add(from[0] + begin * (to[0] - from[0]), from[1] + begin * (to[1] - from[1]));
        }
        out.add(end == 1 ? to[0] : from[0] + end * (to[0] - from[0]),
                end == 1 ? to[1] : from[1] + end * (to[1] - from[1]));
        if (end < 1) {
            finish();
        }
    }
    finish();
}

} // namespace orvane::maps
