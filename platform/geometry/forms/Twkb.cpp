#include "platform/geometry/forms/TinyForms.h"

#include "platform/geometry/shapes/Curves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

// Tiny well-known binary, version 0.23: a byte of kind and digits, a byte of flags, what the flags announce,
// and the positions as differences from the one before, in numbers of as many bytes as they take.

namespace orvane::geometry {

namespace {

enum Flag : unsigned { HasEnvelope = 1, HasSize = 2, HasIds = 4, HasOrdinates = 8, IsEmpty = 16 };

std::uint64_t zigzag(std::int64_t number) {
    return (static_cast<std::uint64_t>(number) << 1U) ^ static_cast<std::uint64_t>(number >> 63);
}

std::int64_t unzigzag(std::uint64_t number) {
    return static_cast<std::int64_t>(number >> 1U) ^ -static_cast<std::int64_t>(number & 1U);
}

bool isMulti(GeometryType type) {
    return type >= GeometryType::MultiPoint && type <= GeometryType::MultiPolygon;
}

class Writer {
public:
    Writer(const TwkbStyle& style, Dimensions dimensions) : style_(style), dimensions_(dimensions) {
        const int digits[] = {style.digits, style.digits, hasZ(dimensions) ? style.zDigits : style.mDigits,
                              style.mDigits};
        std::transform(std::begin(digits), std::end(digits), factors_.begin(),
                       [](int count) { return std::pow(10.0, count); });
    }

    QByteArray write(const Geometry& geometry) {
        QByteArray head;
        const unsigned flags = (hasEnvelope(geometry) ? HasEnvelope : 0U) | (style_.size ? HasSize : 0U) |
                               (dimensions_ != Dimensions::XY ? HasOrdinates : 0U) |
                               (geometry.isEmpty() ? IsEmpty : 0U);
        head += static_cast<char>(static_cast<unsigned>(geometry.type()) |
                                  (static_cast<unsigned>(zigzag(style_.digits)) << 4U));
        head += static_cast<char>(flags);
        if ((flags & HasOrdinates) != 0) {
            head += static_cast<char>((hasZ(dimensions_) ? 1U : 0U) | (hasM(dimensions_) ? 2U : 0U) |
                                      (hasZ(dimensions_) ? static_cast<unsigned>(style_.zDigits) << 2U : 0U) |
                                      (hasM(dimensions_) ? static_cast<unsigned>(style_.mDigits) << 5U : 0U));
        }
        if (!geometry.isEmpty()) {
            writeContent(geometry);
        }
        QByteArray content = std::move(out_);
        out_.clear();
        if ((flags & HasEnvelope) != 0) {
            for (std::size_t i = 0; i < strideOf(dimensions_); ++i) {
                append(zigzag(least_[i]));
                append(zigzag(greatest_[i] - least_[i]));
            }
            content.prepend(out_);
            out_.clear();
        }
        if ((flags & HasSize) != 0) {
            append(static_cast<std::uint64_t>(content.size()));
            head += out_;
        }
        return head + content;
    }

private:
    /// A collection has none: its parts begin their numbers anew.
    bool hasEnvelope(const Geometry& geometry) const {
        return style_.envelope && !geometry.isEmpty() && geometry.type() != GeometryType::GeometryCollection;
    }

    void append(std::uint64_t number) {
        for (; number >= 0x80; number >>= 7U) {
            out_ += static_cast<char>(0x80U | (number & 0x7FU));
        }
        out_ += static_cast<char>(number);
    }

    void writePosition(const double* position) {
        for (std::size_t i = 0; i < strideOf(dimensions_); ++i) {
            const double scaled = std::round(position[i] * factors_[i]);
            if (!(std::abs(scaled) < 4e18)) {
                throw std::runtime_error("a coordinate is too large for this form");
            }
            const auto now = static_cast<std::int64_t>(scaled);
            append(zigzag(now - before_[i]));
            before_[i] = now;
            least_[i] = std::min(least_[i], now);
            greatest_[i] = std::max(greatest_[i], now);
        }
    }

    void writePositions(const CoordinateSequence& positions) {
        append(positions.size());
        for (std::size_t i = 0; i < positions.size(); ++i) {
            writePosition(positions.position(i));
        }
    }

    void writeContent(const Geometry& geometry) {
        switch (geometry.type()) {
        case GeometryType::Point:
            if (geometry.isEmpty()) {
                throw std::runtime_error("an empty point among others has no place in this form");
            }
            writePosition(static_cast<const Point&>(geometry).ordinates());
            return;
        case GeometryType::LineString:
            writePositions(static_cast<const LineString&>(geometry).coordinates());
            return;
        case GeometryType::Polygon: {
            const auto& rings = static_cast<const Polygon&>(geometry).rings();
            append(rings.size());
            std::for_each(rings.begin(), rings.end(), [this](const auto& ring) { writePositions(ring); });
            return;
        }
        default: break;
        }
        const auto& parts = static_cast<const GeometryCollection&>(geometry).parts();
        append(parts.size());
        for (const GeometryPtr& part : parts) {
            if (isMulti(geometry.type())) {
                writeContent(*part);
            } else {
                out_ += Writer(style_, part->dimensions()).write(*part);
            }
        }
    }

    TwkbStyle style_;
    Dimensions dimensions_;
    QByteArray out_;
    std::array<double, 4> factors_{};
    std::array<std::int64_t, 4> before_{};
    std::array<std::int64_t, 4> least_{INT64_MAX, INT64_MAX, INT64_MAX, INT64_MAX};
    std::array<std::int64_t, 4> greatest_{INT64_MIN, INT64_MIN, INT64_MIN, INT64_MIN};
};

class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    std::shared_ptr<Geometry> readWhole() {
        std::shared_ptr<Geometry> geometry = read(0);
        if (!bytes_.empty()) {
            throw std::runtime_error("bytes are left over behind the geometry");
        }
        return geometry;
    }

private:
    /// What stands before the content of one geometry.
    struct Head {
        GeometryType type = GeometryType::Point;
        Dimensions dimensions = Dimensions::XY;
        unsigned flags = 0;
        std::array<double, 4> factors{};
    };

    unsigned takeByte() {
        if (bytes_.empty()) {
            throw std::runtime_error("the geometry ends too early");
        }
        const auto byte = static_cast<unsigned char>(bytes_.front());
        bytes_.remove_prefix(1);
        return byte;
    }

    std::uint64_t takeNumber() {
        std::uint64_t number = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const unsigned byte = takeByte();
            number |= static_cast<std::uint64_t>(byte & 0x7FU) << shift;
            if (byte < 0x80) {
                return number;
            }
        }
        throw std::runtime_error("a number of too many bytes");
    }

    /// Of things that take at least `least` bytes each.
    std::size_t takeCount(std::size_t least) {
        const std::uint64_t count = takeNumber();
        if (count > bytes_.size() / least) {
            throw std::runtime_error("a count is larger than the geometry");
        }
        return static_cast<std::size_t>(count);
    }

    Head takeHead() {
        Head head;
        const unsigned kind = takeByte();
        if ((kind & 0xFU) < 1 || (kind & 0xFU) > 7) {
            throw std::runtime_error("an unknown kind of geometry");
        }
        head.type = static_cast<GeometryType>(kind & 0xFU);
        const double xy = std::pow(10.0, static_cast<int>(unzigzag(kind >> 4U)));
        head.flags = takeByte();
        const unsigned ordinates = (head.flags & HasOrdinates) != 0 ? takeByte() : 0;
        head.dimensions = makeDimensions((ordinates & 1U) != 0, (ordinates & 2U) != 0);
        const double z = std::pow(10.0, ordinates >> 2U & 7U);
        const double m = std::pow(10.0, ordinates >> 5U & 7U);
        head.factors = {xy, xy, hasZ(head.dimensions) ? z : m, m};
        if ((head.flags & HasSize) != 0) {
            takeNumber();
        }
        for (std::size_t i = 0; (head.flags & HasEnvelope) != 0 && i < 2 * strideOf(head.dimensions); ++i) {
            takeNumber();
        }
        return head;
    }

    std::shared_ptr<Geometry> read(int depth) {
        constexpr int deepest = 32;
        if (depth >= deepest) {
            throw std::runtime_error("geometries are nested too deep");
        }
        const Head head = takeHead();
        const bool isEmpty = (head.flags & IsEmpty) != 0;
        before_ = {};
        if (head.type < GeometryType::MultiPoint) {
            return isEmpty ? emptyOf(head) : takeContent(head, head.type);
        }
        std::vector<GeometryPtr> parts;
        const std::size_t count = isEmpty ? 0 : takeCount(1);
        for (std::size_t i = 0; (head.flags & HasIds) != 0 && i < count; ++i) {
            takeNumber();
        }
        for (std::size_t i = 0; i < count; ++i) {
            parts.push_back(isMulti(head.type) ? takeContent(head, static_cast<GeometryType>(
                                                                       static_cast<int>(head.type) - 3))
                                               : read(depth + 1));
        }
        return std::make_shared<GeometryCollection>(head.type, head.dimensions, std::move(parts));
    }

    static std::shared_ptr<Geometry> emptyOf(const Head& head) {
        switch (head.type) {
        case GeometryType::Point: return std::make_shared<Point>(head.dimensions);
        case GeometryType::LineString:
            return std::make_shared<LineString>(CoordinateSequence(head.dimensions));
        default: return std::make_shared<Polygon>(head.dimensions, std::vector<CoordinateSequence>());
        }
    }

    CoordinateSequence takePositions(const Head& head, std::size_t count) {
        const std::size_t stride = strideOf(head.dimensions);
        return {head.dimensions, count, [&](double* target) {
                    for (std::size_t i = 0; i < count * stride; ++i) {
                        before_[i % stride] += static_cast<std::uint64_t>(unzigzag(takeNumber()));
                        target[i] = static_cast<double>(static_cast<std::int64_t>(before_[i % stride])) /
                                    head.factors[i % stride];
                    }
                }};
    }

    std::shared_ptr<Geometry> takeContent(const Head& head, GeometryType type) {
        const std::size_t stride = strideOf(head.dimensions);
        if (type == GeometryType::Point) {
            return std::make_shared<Point>(head.dimensions, takePositions(head, 1).data());
        }
        if (type == GeometryType::LineString) {
            return std::make_shared<LineString>(takePositions(head, takeCount(stride)));
        }
        std::vector<CoordinateSequence> rings;
        for (std::size_t left = takeCount(1); left > 0; --left) {
            rings.push_back(takePositions(head, takeCount(stride)));
        }
        return std::make_shared<Polygon>(head.dimensions, std::move(rings));
    }

    std::string_view bytes_;
    std::array<std::uint64_t, 4> before_{}; ///< unsigned, for broken bytes may wrap them
};

} // namespace

QByteArray toTwkb(const Geometry& geometry, const TwkbStyle& style) {
    const GeometryPtr linear = linearized(GeometryPtr(std::shared_ptr<void>(), &geometry));
    return Writer(style, linear->dimensions()).write(*linear);
}

std::shared_ptr<Geometry> fromTwkb(std::string_view bytes) {
    return Reader(bytes).readWhole();
}

} // namespace orvane::geometry
