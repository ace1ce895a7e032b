#include "platform/geometry/forms/TinyForms.h"

#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shapes/Shapes.h"

#include <algorithm>
#include <cmath>

namespace orvane::geometry {

namespace {

/// A number as a count of its last digits.
std::int64_t rounded(double value, double factor) {
    const double scaled = std::round(value * factor);
    if (!(std::abs(scaled) < 4e18)) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "число %0 не помещается в эту запись."),
                      QString::number(value));
    }
    return static_cast<std::int64_t>(scaled);
}

constexpr std::string_view hashDigits = "0123456789bcdefghjkmnpqrstuvwxyz";
constexpr std::string_view garsLetters = "ABCDEFGHJKLMNPQRSTUVWXYZ";

std::int64_t takePolylineNumber(std::string_view& text) {
    constexpr int offset = 63, bits = 5, more = 0x20, longest = 60;
    std::uint64_t value = 0;
    for (int shift = 0; shift <= longest; shift += bits) {
        const int part = text.empty() ? -1 : static_cast<unsigned char>(text.front()) - offset;
        if (part < 0 || part >= 2 * more) {
            break;
        }
        text.remove_prefix(1);
        value |= static_cast<std::uint64_t>(part % more) << shift;
        if (part < more) {
            return static_cast<std::int64_t>(value >> 1U) ^ -static_cast<std::int64_t>(value & 1U);
        }
    }
    throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "это не сжатая ломаная."));
}

void appendPolylineNumber(std::int64_t number, std::string& out) {
    auto value = (static_cast<std::uint64_t>(number) << 1U) ^ static_cast<std::uint64_t>(number >> 63);
    for (; value >= 0x20; value >>= 5U) {
        out += static_cast<char>((0x20 | (value & 0x1F)) + 63);
    }
    out += static_cast<char>(value + 63);
}

} // namespace

std::string encodedPolyline(const CoordinateSequence& positions, int digits) {
    const double factor = std::pow(10.0, digits);
    std::string text;
    std::int64_t before[2] = {0, 0};
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const std::int64_t now[2] = {rounded(positions.y(i), factor), rounded(positions.x(i), factor)};
        for (std::size_t k = 0; k < 2; ++k) {
            appendPolylineNumber(now[k] - before[k], text);
            before[k] = now[k];
        }
    }
    return text;
}

CoordinateSequence fromEncodedPolyline(std::string_view text, int digits) {
    const double factor = std::pow(10.0, digits);
    std::vector<double> values;
    std::uint64_t y = 0; // unsigned, for broken texts may wrap it
    std::uint64_t x = 0;
    while (!text.empty()) {
        y += static_cast<std::uint64_t>(takePolylineNumber(text));
        x += static_cast<std::uint64_t>(takePolylineNumber(text));
        values.insert(values.end(), {static_cast<double>(static_cast<std::int64_t>(x)) / factor,
                                     static_cast<double>(static_cast<std::int64_t>(y)) / factor});
    }
    return {Dimensions::XY, values};
}

std::string geoHash(double longitude, double latitude, int length) {
    double west = -180.0, east = 180.0, south = -90.0, north = 90.0;
    std::string hash;
    for (int bit = 0; bit < 5 * length; ++bit) {
        double& low = bit % 2 == 0 ? west : south;
        double& high = bit % 2 == 0 ? east : north;
        const double middle = (low + high) / 2.0;
        const bool isHigh = (bit % 2 == 0 ? longitude : latitude) >= middle;
        (isHigh ? low : high) = middle;
        if (bit % 5 == 0) {
            hash += '\0';
        }
        hash.back() = static_cast<char>(hash.back() * 2 + (isHigh ? 1 : 0));
    }
    std::transform(hash.begin(), hash.end(), hash.begin(),
                   [](char digit) { return hashDigits[static_cast<std::size_t>(digit)]; });
    return hash;
}

std::string commonGeoHash(const Envelope& envelope) {
    const std::string low = geoHash(envelope.minX, envelope.minY, longestGeoHash);
    const std::string high = geoHash(envelope.maxX, envelope.maxY, longestGeoHash);
    return {low.begin(), std::mismatch(low.begin(), low.end(), high.begin()).first};
}

std::string garsCell(double longitude, double latitude) {
    if (!(std::abs(longitude) <= 180.0 && std::abs(latitude) <= 90.0)) {
        return {};
    }
    // Cells of five minutes from the south-west corner of the globe; those at its far sides hold their
    // border.
    const int column = std::min(static_cast<int>((longitude + 180.0) * 12.0), 4319);
    const int row = std::min(static_cast<int>((latitude + 90.0) * 12.0), 2159);
    const std::string band = std::to_string(column / 6 + 1);
    std::string cell = std::string(3 - band.size(), '0') + band;
    cell += garsLetters[static_cast<std::size_t>(row / 6 / 24)];
    cell += garsLetters[static_cast<std::size_t>(row / 6 % 24)];
    // Quadrants are numbered row by row from the north, keys of nine as on a telephone.
    cell += static_cast<char>('1' + (row / 3 % 2 == 1 ? 0 : 2) + column / 3 % 2);
    cell += static_cast<char>('1' + (2 - row % 3) * 3 + column % 3);
    return cell;
}

std::optional<Envelope> garsEnvelope(std::string_view code) {
    if (code.size() < 5 || code.size() > 7) {
        return std::nullopt;
    }
    int band = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        if (code[i] < '0' || code[i] > '9') {
            return std::nullopt;
        }
        band = band * 10 + (code[i] - '0');
    }
    const auto letter = [&code](std::size_t i) {
        const char upper =
            code[i] >= 'a' && code[i] <= 'z' ? static_cast<char>(code[i] - 'a' + 'A') : code[i];
        return garsLetters.find(upper);
    };
    const std::size_t first = letter(3), second = letter(4);
    constexpr std::size_t none = std::string_view::npos;
    if (band < 1 || band > 720 || first == none || second == none || first * 24 + second >= 360) {
        return std::nullopt;
    }
    double size = 0.5;
    double west = (band - 1) * size - 180.0;
    double south = static_cast<double>(first * 24 + second) * size - 90.0;
    for (std::size_t i = 5; i < code.size(); ++i) {
        const int sides = i == 5 ? 2 : 3;
        const int key = code[i] - '1';
        if (key < 0 || key >= sides * sides) {
            return std::nullopt;
        }
        size /= sides;
        west += size * (key % sides);
        south += size * (sides - 1 - key / sides);
    }
    return Envelope{west, south, west + size, south + size};
}

} // namespace orvane::geometry
