#include "platform/geometry/Curves.h"
#include "platform/geometry/GeometryFactory.h"
#include "platform/serialization/Archive.h"
#include "platform/serialization/CoordSystemArchive.h"

#include <algorithm>
#include <stdexcept>

// What archives hold: kinds that well-known binary has are kept as such, collections of anything as archived
// objects, ellipses and rounded rectangles as their parameters; behind it the coordinate system, if any.

namespace orvane::geometry {

namespace {

using serialization::ArchiveError;
using serialization::TrackingInputArchive;
using serialization::TrackingOutputArchive;

void saveAsWkb(const Geometry& geometry, TrackingOutputArchive& archive) {
    const GeometryPtr borrowed(std::shared_ptr<void>(), &geometry);
    const QByteArray wkb = GeometryFactory::toWkb(borrowed, QSysInfo::LittleEndian);
    archive.saveBytes({wkb.constData(), static_cast<std::size_t>(wkb.size())});
}

void loadCoordSystem(TrackingInputArchive& archive, Geometry& geometry) {
    if (archive.loadUInt8() == 0) {
        return;
    }
    std::shared_ptr<cs::CoordSystem> coordSystem;
    const unsigned short version = archive.loadVersion();
    serialization::load(archive, coordSystem, version);
    geometry.setCoordSystem(std::move(coordSystem));
}

void checkVersion(unsigned short version) {
    if (version != 0) {
        throw ArchiveError("unknown version of a geometry");
    }
}

template<typename Kind>
std::shared_ptr<serialization::Serializable> loadWkb(TrackingInputArchive& archive, unsigned short version) {
    checkVersion(version);
    const std::string wkb = archive.loadBytes();
    const std::shared_ptr<Geometry> geometry = GeometryFactory::fromWkb(std::string_view(wkb), nullptr);
    if (!dynamic_cast<const Kind*>(geometry.get())) {
        throw ArchiveError("a geometry of another kind than its class");
    }
    loadCoordSystem(archive, *geometry);
    return geometry;
}

std::shared_ptr<serialization::Serializable> loadCollection(TrackingInputArchive& archive,
                                                            unsigned short version) {
    checkVersion(version);
    const std::uint64_t before = archive.available();
    const auto type = static_cast<GeometryType>(archive.loadUInt8());
    const std::uint8_t dimensions = archive.loadUInt8();
    const std::uint32_t count = archive.loadUInt32();
    if (dimensions > static_cast<std::uint8_t>(Dimensions::XYZM) || count > archive.available()) {
        throw ArchiveError("broken collection");
    }
    std::vector<GeometryPtr> parts;
    parts.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        parts.push_back(std::dynamic_pointer_cast<const Geometry>(archive.loadSerializable()));
    }
    // Parts that are references to parts may multiply what a few bytes stand for.
    const std::uint64_t most = std::max<std::uint64_t>(1U << 16, 16 * (before - archive.available()));
    auto collection =
        std::make_shared<GeometryCollection>(type, static_cast<Dimensions>(dimensions), std::move(parts));
    if (collection->weight() > most) {
        throw ArchiveError("a collection repeats its parts too often");
    }
    loadCoordSystem(archive, *collection);
    return collection;
}

std::shared_ptr<serialization::Serializable> loadEllipse(TrackingInputArchive& archive,
                                                         unsigned short version) {
    checkVersion(version);
    double values[5];
    std::generate(std::begin(values), std::end(values), [&] { return archive.loadDouble(); });
    auto ellipse = std::make_shared<Ellipse>(values[0], values[1], values[2], values[3], values[4]);
    loadCoordSystem(archive, *ellipse);
    return ellipse;
}

std::shared_ptr<serialization::Serializable> loadRoundedRectangle(TrackingInputArchive& archive,
                                                                  unsigned short version) {
    checkVersion(version);
    double values[6];
    std::generate(std::begin(values), std::end(values), [&] { return archive.loadDouble(); });
    auto rectangle = std::make_shared<RoundedRectangle>(Envelope{values[0], values[1], values[2], values[3]},
                                                        values[4], values[5]);
    loadCoordSystem(archive, *rectangle);
    return rectangle;
}

constexpr std::string_view pointName = "geometry.Point";
constexpr std::string_view lineStringName = "geometry.LineString";
constexpr std::string_view polygonName = "geometry.Polygon";
constexpr std::string_view multiName = "geometry.Multi";
constexpr std::string_view collectionName = "geometry.Collection";
constexpr std::string_view circularStringName = "geometry.CircularString";
constexpr std::string_view compoundCurveName = "geometry.CompoundCurve";
constexpr std::string_view curvePolygonName = "geometry.CurvePolygon";
constexpr std::string_view ellipseName = "geometry.Ellipse";
constexpr std::string_view roundedRectangleName = "geometry.RoundedRectangle";

const bool registered = serialization::registerSerializable(pointName, loadWkb<Point>) &&
                        serialization::registerSerializable(lineStringName, loadWkb<LineString>) &&
                        serialization::registerSerializable(polygonName, loadWkb<Polygon>) &&
                        serialization::registerSerializable(multiName, loadWkb<GeometryCollection>) &&
                        serialization::registerSerializable(collectionName, loadCollection) &&
                        serialization::registerSerializable(circularStringName, loadWkb<CircularString>) &&
                        serialization::registerSerializable(compoundCurveName, loadWkb<CompoundCurve>) &&
                        serialization::registerSerializable(curvePolygonName, loadWkb<CurvePolygon>) &&
                        serialization::registerSerializable(ellipseName, loadEllipse) &&
                        serialization::registerSerializable(roundedRectangleName, loadRoundedRectangle);

/// Whether well-known binary holds the collection as it is.
bool isPlainMulti(GeometryType type) {
    return type == GeometryType::MultiPoint || type == GeometryType::MultiLineString ||
           type == GeometryType::MultiPolygon;
}

} // namespace

void Geometry::saveCoordSystem(TrackingOutputArchive& archive) const {
    const std::shared_ptr<cs::CoordSystem> system = coordSystem();
    archive.saveUInt8(system ? 1 : 0);
    if (system) {
        archive.saveVersion(0);
        serialization::save(archive, system, 0);
    }
}

std::string_view Point::archiveName() const {
    return pointName;
}
std::string_view LineString::archiveName() const {
    return lineStringName;
}
std::string_view Polygon::archiveName() const {
    return polygonName;
}
std::string_view GeometryCollection::archiveName() const {
    return isPlainMulti(type()) ? multiName : collectionName;
}
std::string_view CircularString::archiveName() const {
    return circularStringName;
}
std::string_view CompoundCurve::archiveName() const {
    return compoundCurveName;
}
std::string_view CurvePolygon::archiveName() const {
    return curvePolygonName;
}
std::string_view Ellipse::archiveName() const {
    return ellipseName;
}
std::string_view RoundedRectangle::archiveName() const {
    return roundedRectangleName;
}

void Point::save(TrackingOutputArchive& archive) const {
    saveAsWkb(*this, archive);
    saveCoordSystem(archive);
}

void LineString::save(TrackingOutputArchive& archive) const {
    saveAsWkb(*this, archive);
    saveCoordSystem(archive);
}

void Polygon::save(TrackingOutputArchive& archive) const {
    saveAsWkb(*this, archive);
    saveCoordSystem(archive);
}

void GeometryCollection::save(TrackingOutputArchive& archive) const {
    if (isPlainMulti(type())) {
        saveAsWkb(*this, archive);
    } else {
        archive.saveUInt8(static_cast<std::uint8_t>(type()));
        archive.saveUInt8(static_cast<std::uint8_t>(dimensions()));
        archive.saveUInt32(static_cast<std::uint32_t>(parts_.size()));
        for (const GeometryPtr& part : parts_) {
            archive.saveSerializable(part.get());
        }
    }
    saveCoordSystem(archive);
}

void CircularString::save(TrackingOutputArchive& archive) const {
    saveAsWkb(*this, archive);
    saveCoordSystem(archive);
}

void CompoundCurve::save(TrackingOutputArchive& archive) const {
    saveAsWkb(*this, archive);
    saveCoordSystem(archive);
}

void CurvePolygon::save(TrackingOutputArchive& archive) const {
    saveAsWkb(*this, archive);
    saveCoordSystem(archive);
}

void Ellipse::save(TrackingOutputArchive& archive) const {
    for (const double value : {centreX_, centreY_, semiAxisA_, semiAxisB_, rotation_}) {
        archive.saveDouble(value);
    }
    saveCoordSystem(archive);
}

void RoundedRectangle::save(TrackingOutputArchive& archive) const {
    for (const double value :
         {rectangle_.minX, rectangle_.minY, rectangle_.maxX, rectangle_.maxY, radiusX_, radiusY_}) {
        archive.saveDouble(value);
    }
    saveCoordSystem(archive);
}

} // namespace orvane::geometry
