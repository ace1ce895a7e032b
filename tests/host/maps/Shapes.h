#pragma once

#include "host/maps/shapes/ShapeReader.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextReader.h"

#include <QByteArray>

namespace orvane::maps {

inline std::shared_ptr<cs::CoordSystem> systemOf(const char* text) {
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(QString::fromUtf8(text));
}

/// A geometry in well-known binary.
class Wkb {
public:
    explicit Wkb(const char* wkt)
        : bytes_(geometry::GeometryFactory::toWkb(geometry::fromWkt(wkt), QSysInfo::LittleEndian)) {}
    ShapeView view() const {
        return ShapeView::ofWkb({bytes_.constData(), static_cast<std::size_t>(bytes_.size())});
    }

private:
    QByteArray bytes_;
};

} // namespace orvane::maps
