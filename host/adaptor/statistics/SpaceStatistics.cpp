#include "host/adaptor/statistics/SpaceStatistics.h"

#include "platform/geometry/measures/Neighbourhood.h"

#include <algorithm>
#include <cmath>

namespace orvane::adaptor {

namespace {

using geometry::Envelope;

/// So many cells, as long as no more than so many envelopes of the sample are in one: those of a small table
/// count each by itself.
constexpr std::size_t mostCells = 256;
constexpr std::size_t mostInCell = 16;
/// Envelopes that differ in size by more are counted in cells of their own: a few large ones meet as much as
/// many small ones.
constexpr double sizeRatio = 8;

double centreX(const Envelope& envelope) {
    return envelope.minX / 2 + envelope.maxX / 2;
}

double centreY(const Envelope& envelope) {
    return envelope.minY / 2 + envelope.maxY / 2;
}

double sizeOf(const Envelope& envelope) {
    return std::max(envelope.maxX - envelope.minX, envelope.maxY - envelope.minY);
}

/// A side of an extent, from low to high.
struct Interval {
    double low;
    double high;
};

/// How likely a place in one interval is no more than `reach` from one in the other, both spread evenly: the
/// share of the rectangle of all pairs that lies in the band |a - b| <= reach. Of it the pairs with a - b < t
/// are a triangle less the corners that the rectangle has not.
double likelihoodWithin(double reach, Interval a, Interval b) {
    if (reach < 0 || a.low - b.high > reach || b.low - a.high > reach) {
        return 0;
    }
    const double extent = std::max(a.high, b.high) - std::min(a.low, b.low);
    if (extent <= reach) {
        return 1;
    }
    const double least = extent * 1e-6; // a place has a width here
    const auto widened = [least](Interval side) {
        return side.high - side.low < least ? Interval{side.low - least, side.high + least} : side;
    };
    a = widened(a);
    b = widened(b);
    const auto half = [](double side) { return side > 0 ? side * side / 2 : 0.0; };
    const auto below = [&](double t) {
        return half(t - (a.low - b.high)) - half(t - (a.high - b.high)) - half(t - (a.low - b.low)) +
               half(t - (a.high - b.low));
    };
    const double all = (a.high - a.low) * (b.high - b.low);
    return std::clamp((below(reach) - below(-reach)) / all, 0.0, 1.0);
}

/// How far the centres of two envelopes may be apart along one axis where they match.
double reachOf(SpaceStatistics::Match match, double first, double second) {
    using Match = SpaceStatistics::Match;
    // Of envelopes that are alike on average some are the smaller ones, and some the same.
    const auto within = [](double inner, double outer) {
        return std::max((outer - inner) / 2, inner <= 2 * outer ? std::min(inner, outer) / 4 : -1.0);
    };
    switch (match) {
    case Match::FirstWithin: return within(first, second);
    case Match::SecondWithin: return within(second, first);
    case Match::CentreWithin: return second / 2;
    case Match::WithinCentre: return first / 2;
    case Match::Meet: break;
    }
    return (first + second) / 2;
}

} // namespace

SpaceStatistics::SpaceStatistics(std::span<Envelope> sample, double rows) : rows_(rows) {
    std::sort(sample.begin(), sample.end(),
              [](const Envelope& a, const Envelope& b) { return sizeOf(a) < sizeOf(b); });
    cellSize_ = std::clamp<std::size_t>(sample.size() / mostCells, 1, mostInCell);
    const double rowsPerEnvelope = rows / static_cast<double>(std::max<std::size_t>(sample.size(), 1));
    for (auto first = sample.begin(); first != sample.end();) {
        const double most = sizeOf(*first) * sizeRatio;
        const auto last =
            std::find_if(first, sample.end(), [most](const Envelope& each) { return sizeOf(each) > most; });
        divide({first, last}, rowsPerEnvelope);
        first = last;
    }
}

bool SpaceStatistics::arePositions() const {
    return std::all_of(cells_.begin(), cells_.end(),
                       [](const Cell& cell) { return cell.width == 0 && cell.height == 0; });
}

void SpaceStatistics::divide(std::span<Envelope> sample, double rowsPerEnvelope) {
    Cell cell;
    for (const Envelope& each : sample) {
        cell.centres.add(centreX(each), centreY(each));
        cell.width += each.maxX - each.minX;
        cell.height += each.maxY - each.minY;
    }
    const double wide = cell.centres.maxX - cell.centres.minX;
    const double high = cell.centres.maxY - cell.centres.minY;
    if (sample.size() <= cellSize_ || !(wide + high > 0)) {
        const auto size = static_cast<double>(sample.size());
        cell.rows = size * rowsPerEnvelope;
        cell.width /= size;
        cell.height /= size;
        // Features lie beyond the outermost ones of the sample, too.
        const double x = wide / static_cast<double>(cellSize_), y = high / static_cast<double>(cellSize_);
        cell.centres = {cell.centres.minX - x, cell.centres.minY - y, cell.centres.maxX + x,
                        cell.centres.maxY + y};
        cells_.push_back(cell);
        return;
    }
    const auto half = sample.begin() + static_cast<std::ptrdiff_t>(sample.size() / 2);
    const auto centre = wide >= high ? centreX : centreY;
    std::nth_element(sample.begin(), half, sample.end(),
                     [centre](const Envelope& a, const Envelope& b) { return centre(a) < centre(b); });
    divide({sample.begin(), half}, rowsPerEnvelope);
    divide({half, sample.end()}, rowsPerEnvelope);
}

double SpaceStatistics::countPairs(const Cell& first, const Cell& second, Match match) {
    const double x =
        likelihoodWithin(reachOf(match, first.width, second.width), {first.centres.minX, first.centres.maxX},
                         {second.centres.minX, second.centres.maxX});
    return x == 0 ? 0
                  : first.rows * second.rows * x *
                        likelihoodWithin(reachOf(match, first.height, second.height),
                                         {first.centres.minY, first.centres.maxY},
                                         {second.centres.minY, second.centres.maxY});
}

double SpaceStatistics::countMatching(const Envelope& window, Match match) const {
    const auto bounded = [](double ordinate) { return std::clamp(ordinate, -largest, largest); };
    const Envelope envelope{bounded(window.minX), bounded(window.minY), bounded(window.maxX),
                            bounded(window.maxY)};
    Cell other;
    other.rows = 1;
    other.centres.add(centreX(envelope), centreY(envelope));
    other.width = envelope.maxX - envelope.minX;
    other.height = envelope.maxY - envelope.minY;
    double count = 0;
    for (const Cell& cell : cells_) {
        count += countPairs(cell, other, match);
    }
    return count;
}

double SpaceStatistics::countPairs(const SpaceStatistics& first, const SpaceStatistics& second, Match match) {
    double count = 0;
    for (const Cell& cell : first.cells_) {
        for (const Cell& other : second.cells_) {
            count += countPairs(cell, other, match);
        }
    }
    return count;
}

SpaceStatistics SpaceStatistics::inSystem(const cs::CoordSystem& target, const cs::CoordSystem& own) const {
    SpaceStatistics moved;
    for (const Cell& cell : cells_) {
        const Envelope whole{cell.centres.minX - cell.width / 2, cell.centres.minY - cell.height / 2,
                             cell.centres.maxX + cell.width / 2, cell.centres.maxY + cell.height / 2};
        const auto image = geometry::envelopeIn(target, whole, own);
        if (!image) {
            continue;
        }
        // Cells are small: a system stretches the centres and the envelopes of one alike.
        const auto scale = [](double before, double after) { return before > 0 ? after / before : 1.0; };
        Cell there;
        there.rows = cell.rows;
        there.width = cell.width * scale(whole.maxX - whole.minX, image->maxX - image->minX);
        there.height = cell.height * scale(whole.maxY - whole.minY, image->maxY - image->minY);
        there.centres = {image->minX + there.width / 2, image->minY + there.height / 2,
                         image->maxX - there.width / 2, image->maxY - there.height / 2};
        moved.cells_.push_back(there);
        moved.rows_ += there.rows;
    }
    return moved;
}

} // namespace orvane::adaptor
