#include "platform/geometry/editing/AffineMap.h"

#include <QtEndian>

#include <cmath>
#include <limits>
#include <numbers>

namespace orvane::geometry {

namespace {

constexpr char startMark = 0x00;
constexpr char separator = 0x3A;
constexpr char endMark = static_cast<char>(0xB3);
constexpr std::size_t elementCount = 16;
constexpr std::size_t blobSize = 2 + elementCount * (sizeof(double) + 1);
constexpr double lastRow[4] = {0, 0, 0, 1};

} // namespace

AffineMap AffineMap::translation(double x, double y, double z) {
    return AffineMap({{{1, 0, 0, x}, {0, 1, 0, y}, {0, 0, 1, z}}});
}

AffineMap AffineMap::scaling(double x, double y, double z) {
    return AffineMap({{{x, 0, 0, 0}, {0, y, 0, 0}, {0, 0, z, 0}}});
}

AffineMap AffineMap::rotation(Axis axis, double degrees) {
    const double quarters = degrees / 90.0;
    const bool isExact = quarters == std::round(quarters); // whose sines are -1, 0 or 1
    const double angle = std::remainder(degrees, 360.0) * std::numbers::pi / 180.0;
    const double s = isExact ? std::round(std::sin(angle)) : std::sin(angle);
    const double c = isExact ? std::round(std::cos(angle)) : std::cos(angle);
    switch (axis) {
    case Axis::X: return AffineMap({{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}}});
    case Axis::Y: return AffineMap({{{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}}});
    case Axis::Z: break;
    }
    return AffineMap({{{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}}});
}

AffineMap AffineMap::then(const AffineMap& next) const {
    AffineMap product;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            double sum = column == 3 ? next.rows_[row][3] : 0.0;
            for (std::size_t i = 0; i < 3; ++i) {
                sum += next.rows_[row][i] * rows_[i][column];
            }
            product.rows_[row][column] = sum;
        }
    }
    return product;
}

double AffineMap::determinant() const {
    const auto& [a, b, c] = rows_;
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
           a[2] * (b[0] * c[1] - b[1] * c[0]);
}

std::optional<AffineMap> AffineMap::inverse() const {
    const double whole = determinant();
    if (whole == 0.0 || !std::isfinite(whole)) {
        return std::nullopt;
    }
    AffineMap inverse;
    for (std::size_t row = 0; row < 3; ++row) {
        double moved = 0.0;
        for (std::size_t column = 0; column < 3; ++column) {
            const auto& next = rows_[(column + 1) % 3];
            const auto& last = rows_[(column + 2) % 3];
            const std::size_t i = (row + 1) % 3;
            const std::size_t j = (row + 2) % 3;
            inverse.rows_[row][column] = (next[i] * last[j] - next[j] * last[i]) / whole; // the cofactor
            moved -= inverse.rows_[row][column] * rows_[column][3];
        }
        inverse.rows_[row][3] = moved;
    }
    return inverse;
}

void AffineMap::apply(double& x, double& y, double& z) const {
    const auto row = [&](std::size_t i) {
        return rows_[i][0] * x + rows_[i][1] * y + rows_[i][2] * z + rows_[i][3];
    };
    const double mappedX = row(0);
    const double mappedY = row(1);
    z = row(2);
    x = mappedX;
    y = mappedY;
}

bool AffineMap::keepsCircles() const {
    const auto& [a, b, c] = rows_;
    const double length = a[0] * a[0] + b[0] * b[0];
    constexpr double roundingError = 1e-14;
    const double bound = roundingError * length;
    return length > 0.0 && a[2] == 0.0 && b[2] == 0.0 &&
           std::abs(a[1] * a[1] + b[1] * b[1] - length) <= bound &&
           std::abs(a[0] * a[1] + b[0] * b[1]) <= bound;
}

std::string AffineMap::toBlob() const {
    std::string blob(blobSize, separator);
    blob[0] = startMark;
    blob[1] = 1; // little-endian
    char* at = blob.data() + 2;
    for (std::size_t i = 0; i < elementCount; ++i, at += sizeof(double) + 1) {
        qToLittleEndian<double>(i < 12 ? rows_[i / 4][i % 4] : lastRow[i - 12], at);
    }
    blob.back() = endMark;
    return blob;
}

std::optional<AffineMap> AffineMap::fromBlob(std::string_view blob) {
    if (blob.size() != blobSize || blob[0] != startMark || static_cast<unsigned char>(blob[1]) > 1 ||
        blob.back() != endMark) {
        return std::nullopt;
    }
    AffineMap map;
    const char* at = blob.data() + 2;
    for (std::size_t i = 0; i < elementCount; ++i, at += sizeof(double) + 1) {
        const double value = blob[1] == 1 ? qFromLittleEndian<double>(at) : qFromBigEndian<double>(at);
        if (!std::isfinite(value) || (i >= 12 && value != lastRow[i - 12]) ||
            (i + 1 < elementCount && at[sizeof(double)] != separator)) {
            return std::nullopt;
        }
        if (i < 12) {
            map.rows_[i / 4][i % 4] = value;
        }
    }
    return map;
}

} // namespace orvane::geometry
