#pragma once

#include "platform/Export.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::geometry {

/// An affine map of space: a matrix of three rows and four columns, the last of which is added.
class ORVANE_PLATFORM_EXPORT AffineMap {
public:
    using Rows = std::array<std::array<double, 4>, 3>;

    AffineMap() = default; ///< leaves everything where it is
    explicit AffineMap(const Rows& rows) : rows_(rows) {}

    static AffineMap translation(double x, double y, double z);
    static AffineMap scaling(double x, double y, double z);
    enum class Axis { X, Y, Z };
    /// About an axis, anticlockwise seen from its positive end.
    static AffineMap rotation(Axis axis, double degrees);

    const Rows& rows() const { return rows_; }
    /// The map that does this one, and then the other.
    AffineMap then(const AffineMap& next) const;
    double determinant() const;
    /// None where the determinant is 0.
    std::optional<AffineMap> inverse() const;
    void apply(double& x, double& y, double& z) const;
    /// Whether circles in the plane become circles in the plane.
    bool keepsCircles() const;

    /// As SpatiaLite keeps matrices: 0x00, the byte order, sixteen doubles row by row with 0x3A between them,
    /// 0xB3.
    std::string toBlob() const;
    static std::optional<AffineMap> fromBlob(std::string_view blob);

private:
    Rows rows_{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
};

} // namespace orvane::geometry
