#include "host/maps/classes/Palettes.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

// YlGnBu and PuOr of Cynthia Brewer's ColorBrewer (colorbrewer2.org).
constexpr QRgb sequential[] = {0xFFFFFFD9, 0xFFEDF8B1, 0xFFC7E9B4, 0xFF7FCDBB, 0xFF41B6C4,
                               0xFF1D91C0, 0xFF225EA8, 0xFF253494, 0xFF081D58};
constexpr QRgb below[] = {0xFFF7F7F7, 0xFFD8DAEB, 0xFFB2ABD2, 0xFF8073AC, 0xFF542788};
constexpr QRgb above[] = {0xFFF7F7F7, 0xFFFEE0B6, 0xFFFDB863, 0xFFE08214, 0xFFB35806};
// "Light" of Paul Tol, Colour Schemes, SRON/EPS/TN/09-002: for areas with labels on them.
constexpr QRgb categories[] = {0xFF77AADD, 0xFFEE8866, 0xFFEEDD88, 0xFFFFAABB,
                               0xFF44BB99, 0xFFBBCC33, 0xFFAAAA00, 0xFF99DDFF};

template<std::size_t size>
QColor between(const QRgb (&anchors)[size], double share) {
    const double place = std::clamp(share, 0.0, 1.0) * (size - 1);
    const auto first = std::min(static_cast<std::size_t>(place), size - 2);
    const double part = place - static_cast<double>(first);
    const auto mix = [part](int from, int to) {
        return from + static_cast<int>(std::lround(part * (to - from)));
    };
    const QRgb from = anchors[first];
    const QRgb to = anchors[first + 1];
    return {mix(qRed(from), qRed(to)), mix(qGreen(from), qGreen(to)), mix(qBlue(from), qBlue(to))};
}

} // namespace

std::vector<QColor> sequentialColours(int count, bool isForAreas) {
    std::vector<QColor> colours;
    // The lightest anchor is not told from paper, the darkest hides labels.
    const double lightest = isForAreas ? 0.1 : 0.4;
    constexpr double darkest = 0.88;
    for (int i = 0; i < count; ++i) {
        const double share = count < 2 ? 0.5 : static_cast<double>(i) / (count - 1);
        colours.push_back(between(sequential, lightest + share * (darkest - lightest)));
    }
    return colours;
}

std::vector<QColor> divergingColours(int countBelow, int countAbove) {
    std::vector<QColor> colours;
    const double most = std::max({countBelow, countAbove, 1});
    for (int i = countBelow; i > 0; --i) {
        colours.push_back(between(below, i / most));
    }
    for (int i = 1; i <= countAbove; ++i) {
        colours.push_back(between(above, i / most));
    }
    return colours;
}

std::vector<QColor> categoryColours(int count) {
    std::vector<QColor> colours;
    for (int i = 0; i < std::min<int>(count, std::size(categories)); ++i) {
        colours.emplace_back(categories[i]);
    }
    return colours;
}

QColor noValueColour() {
    return {0xE4, 0xE4, 0xE4};
}

QColor otherValueColour() {
    return {0xB8, 0xB8, 0xB8};
}

} // namespace orvane::maps
