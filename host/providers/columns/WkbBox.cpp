#include "host/providers/columns/WkbBox.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>

namespace orvane::files {

namespace {

constexpr int MAX_DEPTH = 32;

class WkbWalker {
public:
    explicit WkbWalker(std::string_view wkb) : position_(wkb.data()), end_(wkb.data() + wkb.size()) {}

    /// Adds the points of the next geometry; false for what it cannot read.
    bool addGeometry(Box& box, int depth) {
        std::uint8_t order = 0;
        std::uint32_t type = 0;
        if (depth > MAX_DEPTH || !read(order) || order > 1)
            return false;
        isSwapped_ = (order == 1) != (std::endian::native == std::endian::little);
        if (!readNumber(type))
            return false;
        const bool hasFlagZ = (type & 0x80000000U) != 0;
        const bool hasFlagM = (type & 0x40000000U) != 0;
        type &= 0x0fffffffU;
        const auto isoDimension = type / 1000;
        const std::size_t coordinates = 2U + (hasFlagZ || isoDimension == 1 || isoDimension == 3 ? 1U : 0U) +
                                        (hasFlagM || isoDimension == 2 || isoDimension == 3 ? 1U : 0U);
        switch (type % 1000) {
        case 1: return addPoints(box, 1, coordinates);
        case 2: return addCountedPoints(box, coordinates);
        case 3:
        case 17: return addRings(box, coordinates);
        case 4:
        case 5:
        case 6:
        case 7:
        case 15:
        case 16: return addParts(box, depth);
        default: return false;
        }
    }

private:
    std::size_t left() const { return static_cast<std::size_t>(end_ - position_); }

    template<class Value>
    bool read(Value& value) {
        if (left() < sizeof value)
            return false;
        std::memcpy(&value, position_, sizeof value);
        position_ += sizeof value;
        return true;
    }
    bool readNumber(std::uint32_t& value) {
        if (!read(value))
            return false;
        if (isSwapped_)
            value = __builtin_bswap32(value);
        return true;
    }
    double coordinate(std::size_t offset) const {
        std::uint64_t bits;
        std::memcpy(&bits, position_ + offset, sizeof bits);
        return std::bit_cast<double>(isSwapped_ ? __builtin_bswap64(bits) : bits);
    }

    bool addPoints(Box& box, std::size_t count, std::size_t coordinates) {
        const std::size_t pointSize = coordinates * sizeof(double);
        if (count > left() / pointSize)
            return false;
        for (; count > 0; --count, position_ += pointSize)
            box.add(coordinate(0), coordinate(sizeof(double)));
        return true;
    }
    bool addCountedPoints(Box& box, std::size_t coordinates) {
        std::uint32_t count = 0;
        return readNumber(count) && addPoints(box, count, coordinates);
    }
    bool addRings(Box& box, std::size_t coordinates) {
        std::uint32_t count = 0;
        if (!readNumber(count))
            return false;
        for (; count > 0; --count) {
            if (!addCountedPoints(box, coordinates))
                return false;
        }
        return true;
    }
    bool addParts(Box& box, int depth) {
        std::uint32_t count = 0;
        if (!readNumber(count))
            return false;
        for (; count > 0; --count) {
            if (!addGeometry(box, depth + 1))
                return false;
        }
        return true;
    }

    const char* position_;
    const char* end_;
    bool isSwapped_ = false;
};

} // namespace

void Box::add(double x, double y) {
    // An empty point has no numbers for coordinates; comparisons with them are false and leave the box alone.
    minX = x < minX ? x : minX;
    minY = y < minY ? y : minY;
    maxX = x > maxX ? x : maxX;
    maxY = y > maxY ? y : maxY;
}

void Box::add(const Box& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
}

Box boxOfWkb(std::string_view wkb) {
    Box box;
    return WkbWalker(wkb).addGeometry(box, 0) ? box : Box::everything();
}

} // namespace orvane::files
