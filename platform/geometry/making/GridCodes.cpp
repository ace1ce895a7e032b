#include "platform/geometry/making/GridCodes.h"

#include <algorithm>
#include <cmath>

namespace orvane::geometry {

namespace {

constexpr std::string_view garsLetters = "ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr int columns = 720; // of half a degree
constexpr int rows = 360;

int partOf(double value, double size, int most) {
    return std::clamp(static_cast<int>(std::floor(value / size)), 0, most - 1);
}

} // namespace

std::string garsCode(double longitude, double latitude) {
    const double x = longitude + 180.0;
    const double y = latitude + 90.0;
    const int column = partOf(x, 0.5, columns);
    const int row = partOf(y, 0.5, rows);
    // Of the cell six parts by six of five minutes; quadrants from north-west, keys likewise.
    constexpr int fives = 12; // in a degree
    const int east = std::clamp(static_cast<int>(std::floor(x * fives)) - column * 6, 0, 5);
    const int north = std::clamp(static_cast<int>(std::floor(y * fives)) - row * 6, 0, 5);
    const std::string digits = std::to_string(column + 1);
    std::string code = std::string(3 - digits.size(), '0') + digits;
    code += garsLetters[static_cast<std::size_t>(row) / garsLetters.size()];
    code += garsLetters[static_cast<std::size_t>(row) % garsLetters.size()];
    code += static_cast<char>('1' + (north < 3 ? 2 : 0) + east / 3);
    code += static_cast<char>('1' + 3 * (2 - north % 3) + east % 3);
    return code;
}

std::optional<Envelope> garsCell(std::string_view code) {
    constexpr auto none = std::string_view::npos;
    if (code.size() < 5 || code.size() > 7 || code.substr(0, 3).find_first_not_of("0123456789") != none) {
        return std::nullopt;
    }
    const int column = (code[0] - '0') * 100 + (code[1] - '0') * 10 + (code[2] - '0') - 1;
    const std::size_t first = garsLetters.find(code[3]);
    const std::size_t second = garsLetters.find(code[4]);
    if (column < 0 || column >= columns || first == none || second == none) {
        return std::nullopt;
    }
    const std::size_t row = first * garsLetters.size() + second;
    if (row >= rows) {
        return std::nullopt;
    }
    double x = column * 0.5 - 180.0;
    double y = static_cast<double>(row) * 0.5 - 90.0;
    double size = 0.5;
    if (code.size() > 5) {
        const int quadrant = code[5] - '1';
        if (quadrant < 0 || quadrant > 3) {
            return std::nullopt;
        }
        size = 0.25;
        x += quadrant % 2 * size;
        y += (1 - quadrant / 2) * size;
    }
    if (code.size() > 6) {
        const int key = code[6] - '1';
        if (key < 0 || key > 8) {
            return std::nullopt;
        }
        size /= 3.0;
        x += key % 3 * size;
        y += (2 - key / 3) * size;
    }
    return Envelope{x, y, x + size, y + size};
}

std::string geoHash(const Envelope& envelope, int most) {
    constexpr std::string_view letters = "0123456789bcdefghjkmnpqrstuvwxyz";
    constexpr int bitsPerLetter = 5;
    Envelope cell{-180.0, -90.0, 180.0, 90.0};
    std::string hash;
    std::size_t letter = 0;
    for (int bit = 0; static_cast<int>(hash.size()) < most; ++bit) {
        const bool isLongitude = bit % 2 == 0;
        double& low = isLongitude ? cell.minX : cell.minY;
        double& high = isLongitude ? cell.maxX : cell.maxY;
        const double middle = (low + high) / 2.0;
        const double least = isLongitude ? envelope.minX : envelope.minY;
        const double largest = isLongitude ? envelope.maxX : envelope.maxY;
        if (least < middle && largest >= middle) {
            break;
        }
        const bool isHigh = least >= middle;
        (isHigh ? low : high) = middle;
        letter = 2 * letter + (isHigh ? 1 : 0);
        if (bit % bitsPerLetter == bitsPerLetter - 1) {
            hash += letters[letter];
            letter = 0;
        }
    }
    return hash;
}

} // namespace orvane::geometry
