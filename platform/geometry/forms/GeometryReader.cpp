#include "platform/geometry/forms/GeometryFactory.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryWalker.h"
#include "platform/geometry/shapes/Curves.h"

#include <cmath>
#include <stdexcept>

namespace orvane::geometry {

namespace {

/// Makes objects of what a walker tells.
class Builder {
public:
    /// `ownDimensions`: a whole has dimensions of its own, not those of its parts.
    explicit Builder(bool ownDimensions) : ownDimensions_(ownDimensions) {}

    bool begin(GeometryType type, Dimensions, std::size_t count) {
        single_ = type;
        if (type == GeometryType::Polygon) {
            rings_.clear();
            rings_.reserve(count);
        } else if (hasParts(type)) {
            open_.emplace_back().reserve(count);
        }
        return true;
    }

    bool positions(const PositionRun& run) {
        if (single_ == GeometryType::Point) {
            double ordinates[4];
            run.copyTo(ordinates);
            add(std::make_shared<Point>(run.dimensions, ordinates));
            return true;
        }
        CoordinateSequence sequence(run.dimensions, run.count, [&](double* target) { run.copyTo(target); });
        if (single_ == GeometryType::Polygon) {
            rings_.push_back(std::move(sequence));
        } else if (single_ == GeometryType::LineString) {
            add(std::make_shared<LineString>(std::move(sequence)));
        } else {
            add(std::make_shared<CircularString>(std::move(sequence)));
        }
        return true;
    }

    bool end(GeometryType type, Dimensions dimensions) {
        if (type == GeometryType::Polygon) {
            add(std::make_shared<Polygon>(dimensions, std::move(rings_)));
        } else if (hasParts(type)) {
            std::vector<GeometryPtr> parts = std::move(open_.back());
            open_.pop_back();
            const bool own = ownDimensions_ || parts.empty();
            const Dimensions ofWhole = own ? dimensions : parts.front()->dimensions();
            add(whole(type, ofWhole, std::move(parts)));
        }
        return true;
    }

    std::shared_ptr<Geometry> takeResult() { return std::move(result_); }

private:
    static bool hasParts(GeometryType type) {
        return type > GeometryType::Polygon && type != GeometryType::CircularString;
    }

    static std::shared_ptr<Geometry> whole(GeometryType type, Dimensions dimensions,
                                           std::vector<GeometryPtr> parts) {
        if (type == GeometryType::CompoundCurve) {
            return std::make_shared<CompoundCurve>(dimensions, std::move(parts));
        }
        if (type == GeometryType::CurvePolygon) {
            return std::make_shared<CurvePolygon>(dimensions, std::move(parts));
        }
        return std::make_shared<GeometryCollection>(type, dimensions, std::move(parts));
    }

    void add(std::shared_ptr<Geometry> geometry) {
        if (open_.empty()) {
            result_ = std::move(geometry);
        } else {
            open_.back().push_back(std::move(geometry));
        }
    }

    bool ownDimensions_;
    GeometryType single_ = GeometryType::Point; ///< which the next positions are of
    std::vector<CoordinateSequence> rings_;
    std::vector<std::vector<GeometryPtr>> open_; ///< the parts read so far, of each level
    std::shared_ptr<Geometry> result_;
};

/// `walk` has the walker walk over the bytes.
template<Framing framing, typename Walk>
std::shared_ptr<Geometry> read(GeometryWalker<framing, Builder>& walker, Builder& builder, const Walk& walk) {
    try {
        if (!walk(walker)) {
            throw std::runtime_error(walker.failure());
        }
    } catch (const std::invalid_argument& refused) { // half an arc, a line among points
        throw std::runtime_error(refused.what());
    }
    return builder.takeResult();
}

std::shared_ptr<cs::CoordSystem> systemOf(std::uint32_t srid) {
    if (srid == 0 || srid > 999999) {
        return nullptr;
    }
    return cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(
        QStringLiteral("epsg:%1").arg(srid));
}

} // namespace

std::shared_ptr<Geometry> GeometryFactory::fromWkb(std::string_view bytes,
                                                   const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    Builder builder(true);
    GeometryWalker<Framing::Wkb, Builder> walker(bytes, builder);
    std::shared_ptr<Geometry> geometry = read(walker, builder, [](auto& walk) { return walk.walk(); });
    geometry->setCoordSystem(coordSystem ? coordSystem : systemOf(walker.srid()));
    return geometry;
}

std::shared_ptr<Geometry> GeometryFactory::fromWkb(const QByteArray& bytes,
                                                   const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    return fromWkb(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())), coordSystem);
}

std::shared_ptr<Geometry> GeometryFactory::fromFgf(std::string_view bytes) {
    Builder builder(false);
    GeometryWalker<Framing::Fgf, Builder> walker(bytes, builder);
    return read(walker, builder, [](auto& walk) { return walk.walk(); });
}

std::shared_ptr<Geometry>
GeometryFactory::fromSpatialite(std::uint32_t kind, std::string_view content, bool littleEndian,
                                const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    Builder builder(true);
    GeometryWalker<Framing::Spatialite, Builder> walker(content, builder, littleEndian);
    std::shared_ptr<Geometry> geometry =
        read(walker, builder, [kind](auto& walk) { return walk.walkContent(kind); });
    geometry->setCoordSystem(coordSystem);
    return geometry;
}

std::optional<Envelope> envelopeOfWkb(std::string_view bytes) {
    struct Visitor : GeometryVisitor {
        Envelope envelope;
        std::optional<GeometryType> part; ///< what alone may stand here

        bool begin(GeometryType type, Dimensions, std::size_t) {
            // The positions of an arc do not bound it.
            if (type > GeometryType::GeometryCollection || (part && type != *part)) {
                return false;
            }
            switch (type) {
            case GeometryType::MultiPoint: part = GeometryType::Point; break;
            case GeometryType::MultiLineString: part = GeometryType::LineString; break;
            case GeometryType::MultiPolygon: part = GeometryType::Polygon; break;
            default: break;
            }
            return true;
        }
        bool positions(const PositionRun& run) {
            run.addTo(envelope);
            return run.count == 1 || run.areNumbers(); // a point without a place is empty
        }
        bool end(GeometryType type, Dimensions) {
            if (type > GeometryType::Polygon) {
                part.reset();
            }
            return true;
        }
    } visitor;
    GeometryWalker<Framing::Wkb, Visitor> walker(bytes, visitor);
    return walker.walk() ? std::optional(visitor.envelope) : std::nullopt;
}

std::shared_ptr<const Geometry> fitGeometry(const std::shared_ptr<const Geometry>& geometry) {
    constexpr double roundingError = 1e-6;
    const auto system = geometry ? geometry->coordSystem() : nullptr;
    if (!system) {
        return geometry;
    }
    const auto isBeyondPole = [](double y) {
        return std::abs(y) > 90.0 && std::abs(y) <= 90.0 + roundingError;
    };
    const Envelope envelope = geometry->envelope();
    // Only then is the kind of the system worth asking for.
    if ((!isBeyondPole(envelope.minY) && !isBeyondPole(envelope.maxY)) || !system->isGeographic()) {
        return geometry;
    }
    const auto fitted = geometry->mapped([&](double* positions, std::size_t count, Dimensions dimensions) {
        for (std::size_t i = 0; i < count; ++i) {
            double& y = positions[i * strideOf(dimensions) + 1];
            y = isBeyondPole(y) ? std::copysign(90.0, y) : y;
        }
        return true;
    });
    fitted->setCoordSystem(system);
    return fitted;
}

} // namespace orvane::geometry
