#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Coordinates.h"
#include "platform/serialization/Serializable.h"

#include <QMetaType>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::cs {
class CoordSystem;
}
namespace orvane::serialization {
class InputArchive;
}

namespace orvane::geometry {

/// The kinds of geometry. Up to 12 the codes of well-known binary.
enum class GeometryType : std::uint8_t {
    Point = 1,
    LineString = 2,
    Polygon = 3,
    MultiPoint = 4,
    MultiLineString = 5,
    MultiPolygon = 6,
    GeometryCollection = 7,
    CircularString = 8,
    CompoundCurve = 9,
    CurvePolygon = 10,
    MultiCurve = 11,
    MultiSurface = 12,
    Ellipse = 64,
    RoundedRectangle = 65,
};

class Geometry;
using GeometryPtr = std::shared_ptr<const Geometry>;

/// What was computed from a shape and is worth keeping: shared by the copies of a geometry, also by those
/// made before it was.
class KeptForm {
public:
    /// Guards what is kept.
    std::mutex& mutex() { return mutex_; }
    /// With the lock held: the object of a class, one for each class, made when first asked for.
    template<typename Form>
    Form& get() {
        for (const auto& [form, object] : forms_) {
            if (form == &key<Form>) {
                return *static_cast<Form*>(object.get());
            }
        }
        return *static_cast<Form*>(forms_.emplace_back(&key<Form>, std::make_shared<Form>()).second.get());
    }

private:
    friend class Geometry;

    std::atomic<int> references_{1};
    std::mutex mutex_;
    template<typename Form>
    static constexpr char key = 0; ///< its address tells classes apart

    std::vector<std::pair<const char*, std::shared_ptr<void>>> forms_;
};

/// A shape with the coordinate system it is in, if known. The shape never changes; copies share it, and what
/// was computed from it. Any thread may read a geometry; replacing the coordinate system is for one that
/// nobody else sees.
class ORVANE_PLATFORM_EXPORT Geometry : public serialization::Serializable {
public:
    /// What the archive names of all geometries begin with.
    static constexpr std::string_view archiveNamePrefix = "geometry.";

    ~Geometry() override;
    Geometry& operator=(const Geometry&) = delete;

    GeometryType type() const { return type_; }
    Dimensions dimensions() const { return dimensions_; }

    /// A copy that may be given another coordinate system. Costs no copy of coordinates.
    virtual std::shared_ptr<Geometry> clone() const = 0;
    /// No position at all.
    virtual bool isEmpty() const = 0;
    /// Of curves the envelope of the curve itself. Empty for an empty geometry.
    virtual Envelope envelope() const = 0;
    /// Positions and parts, counted through all levels; stays at the largest number when there are more.
    virtual std::uint64_t weight() const = 0;
    /// Same kind, parts and coordinates. Coordinate systems are not compared.
    virtual bool equals(const Geometry& other) const = 0;

    /// Null for none.
    virtual std::shared_ptr<cs::CoordSystem> coordSystem() const { return coordSystem_; }
    virtual void setCoordSystem(std::shared_ptr<cs::CoordSystem> coordSystem);

    /// The geometry in another coordinate system, z changed only where the systems have heights; curves
    /// become linear. Null for a null target, a geometry without coordinate system, systems without a way
    /// between them, and when a position has no image. Throws nothing of its own.
    GeometryPtr transformed(const std::shared_ptr<cs::CoordSystem>& target) const;

    /// What the library of computations keeps with the shape. For the sources that use it.
    KeptForm& keptForm() const;

    /// Changes positions in place; false gives up.
    using PositionMap = std::function<bool(double* positions, std::size_t count, Dimensions dimensions)>;
    /// The geometry with changed positions and no coordinate system; curves are made linear first. Null when
    /// the map gave up.
    virtual std::shared_ptr<Geometry> mapped(const PositionMap& map) const = 0;

    std::string_view archiveName() const final;
    void save(serialization::TrackingOutputArchive& archive) const final;

protected:
    Geometry(GeometryType type, Dimensions dimensions) : type_(type), dimensions_(dimensions) {}
    Geometry(const Geometry& other);

    /// What stands in archives before the coordinate system: well-known binary, which holds most kinds whole.
    virtual void saveShape(serialization::TrackingOutputArchive& archive) const;

private:
    std::shared_ptr<cs::CoordSystem> coordSystem_;
    mutable std::atomic<KeptForm*> keptForm_{nullptr};
    GeometryType type_;
    Dimensions dimensions_;
};

/// What a kind of geometry gets by saying which class it is. `Base` is Geometry or an abstract class below
/// it.
template<typename Kind, typename Base = Geometry>
class GeometryKind : public Base {
public:
    std::shared_ptr<Geometry> clone() const final {
        return std::make_shared<Kind>(static_cast<const Kind&>(*this));
    }

protected:
    using Base::Base;
};

} // namespace orvane::geometry

Q_DECLARE_METATYPE(std::shared_ptr<const orvane::geometry::Geometry>)
