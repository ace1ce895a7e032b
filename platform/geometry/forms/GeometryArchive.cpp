#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/serialization/Archive.h"
#include "platform/serialization/CoordSystemArchive.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

// What archives hold: kinds that well-known binary has are kept as such, collections of anything as archived
// objects, ellipses and rounded rectangles as their parameters; behind it the coordinate system, if any.

namespace orvane::geometry {

namespace {

using serialization::ArchiveError;
using serialization::TrackingInputArchive;
using serialization::TrackingOutputArchive;

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

/// The class names in archives, the same for ever.
std::string_view archiveNameOf(GeometryType type) {
    switch (type) {
    case GeometryType::Point: return "geometry.Point";
    case GeometryType::LineString: return "geometry.LineString";
    case GeometryType::Polygon: return "geometry.Polygon";
    case GeometryType::MultiPoint:
    case GeometryType::MultiLineString:
    case GeometryType::MultiPolygon: return "geometry.Multi";
    case GeometryType::GeometryCollection:
    case GeometryType::MultiCurve:
    case GeometryType::MultiSurface: return "geometry.Collection";
    case GeometryType::CircularString: return "geometry.CircularString";
    case GeometryType::CompoundCurve: return "geometry.CompoundCurve";
    case GeometryType::CurvePolygon: return "geometry.CurvePolygon";
    case GeometryType::Ellipse: return "geometry.Ellipse";
    case GeometryType::RoundedRectangle: return "geometry.RoundedRectangle";
    }
    return {};
}

struct Loader {
    GeometryType type; ///< one of those that share the name
    serialization::SerializableLoader load;
};

constexpr Loader loaders[] = {
    {GeometryType::Point, loadWkb<Point>},
    {GeometryType::LineString, loadWkb<LineString>},
    {GeometryType::Polygon, loadWkb<Polygon>},
    {GeometryType::MultiPoint, loadWkb<GeometryCollection>},
    {GeometryType::GeometryCollection, loadCollection},
    {GeometryType::CircularString, loadWkb<CircularString>},
    {GeometryType::CompoundCurve, loadWkb<CompoundCurve>},
    {GeometryType::CurvePolygon, loadWkb<CurvePolygon>},
    {GeometryType::Ellipse, loadEllipse},
    {GeometryType::RoundedRectangle, loadRoundedRectangle},
};

const bool registered = std::all_of(std::begin(loaders), std::end(loaders), [](const Loader& loader) {
    return serialization::registerSerializable(archiveNameOf(loader.type), loader.load);
});

/// Whether well-known binary holds the collection as it is.
bool isPlainMulti(GeometryType type) {
    return type == GeometryType::MultiPoint || type == GeometryType::MultiLineString ||
           type == GeometryType::MultiPolygon;
}

} // namespace

std::string_view Geometry::archiveName() const {
    return archiveNameOf(type_);
}

void Geometry::save(TrackingOutputArchive& archive) const {
    saveShape(archive);
    const std::shared_ptr<cs::CoordSystem> system = coordSystem();
    archive.saveUInt8(system ? 1 : 0);
    if (system) {
        archive.saveVersion(0);
        serialization::save(archive, system, 0);
    }
}

void Geometry::saveShape(TrackingOutputArchive& archive) const {
    const GeometryPtr borrowed(std::shared_ptr<void>(), this);
    const QByteArray wkb = GeometryFactory::toWkb(borrowed, QSysInfo::LittleEndian);
    archive.saveBytes({wkb.constData(), static_cast<std::size_t>(wkb.size())});
}

void GeometryCollection::saveShape(TrackingOutputArchive& archive) const {
    if (isPlainMulti(type())) {
        Geometry::saveShape(archive);
        return;
    }
    constexpr std::uint64_t leastPositionSize = 2 * sizeof(double);
    if (weight() > static_cast<std::uint64_t>(std::numeric_limits<int>::max()) / leastPositionSize) {
        throw std::length_error("a geometry of more than 2 GiB");
    }
    archive.saveUInt8(static_cast<std::uint8_t>(type()));
    archive.saveUInt8(static_cast<std::uint8_t>(dimensions()));
    archive.saveUInt32(static_cast<std::uint32_t>(parts_.size()));
    for (const GeometryPtr& part : parts_) {
        archive.saveWhole(*part); // references that multiply what the bytes stand for are refused when read
    }
}

void Ellipse::saveShape(TrackingOutputArchive& archive) const {
    for (const double value : {centreX_, centreY_, semiAxisA_, semiAxisB_, rotation_}) {
        archive.saveDouble(value);
    }
}

void RoundedRectangle::saveShape(TrackingOutputArchive& archive) const {
    for (const double value :
         {rectangle_.minX, rectangle_.minY, rectangle_.maxX, rectangle_.maxY, radiusX_, radiusY_}) {
        archive.saveDouble(value);
    }
}

} // namespace orvane::geometry
