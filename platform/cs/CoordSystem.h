#pragma once

#include "platform/Export.h"

#include <QString>

#include <memory>

namespace orvane::cs {

/// A coordinate system. Immutable; any thread may read it. x is east (or longitude), y north (or latitude),
/// whatever the order of the axes in its definition. Angles are in degrees.
class ORVANE_PLATFORM_EXPORT CoordSystem {
public:
    virtual ~CoordSystem();

    /// EPSG code, 0 when the system has none.
    virtual int epsg() const = 0;
    /// The text from which CoordSysFactory::createFromTaggedString makes an equal system: "epsg:3857",
    /// "proj:+proj=...", "wkt:...". The shortest form that loses nothing.
    virtual QString taggedString() const = 0;
    /// The name in the definition, e.g. "WGS 84".
    virtual QString name() const = 0;
    /// True for systems in degrees on an ellipsoid.
    virtual bool isGeographic() const = 0;
    /// Metres in one unit of the plane; for geographic systems radians in one unit of the angle.
    virtual double unitFactor() const = 0;
    /// Semi-major axis in metres and inverse flattening (0 for a sphere) of the ellipsoid.
    virtual double semiMajorAxis() const = 0;
    virtual double inverseFlattening() const = 0;
    /// Same EPSG code, or equivalent definitions.
    virtual bool equals(const CoordSystem& other) const = 0;
};

/// Makes coordinate systems. Any thread may call it.
class ORVANE_PLATFORM_EXPORT CoordSysFactory {
public:
    /// The factory of the process.
    static const CoordSysFactory* defaultCoordSysFactory();
    virtual ~CoordSysFactory();

    /// Throws std::runtime_error for a code that PROJ's database does not know.
    virtual std::shared_ptr<CoordSystem> createFromEpsg(int code) const = 0;
    /// Null for text of none of the three forms, or that PROJ does not accept.
    virtual std::shared_ptr<CoordSystem> createFromTaggedString(const QString& text) const = 0;
    /// From any WKT that PROJ reads; null when it does not. Recognises the EPSG code where there is one.
    virtual std::shared_ptr<CoordSystem> createFromWkt(const QString& wkt) const = 0;
};

} // namespace orvane::cs
