#include <orvane/engine/functions/Geometry.h>

#include "Barrier.h"
#include "engine/geometry/GatheredParts.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/overlay/Overlay.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shaping/Hulls.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/GeometryConversions.h>

#include <QCoreApplication>

#include <memory>
#include <new>
#include <optional>
#include <stdexcept>

namespace orvane::engine {

namespace {

using geometry::GeometryPtr;

/// The geometries of one group, in the coordinate system of the first that has one.
class Group {
public:
    explicit Group(sqlite3_context* context)
        : cache_(*static_cast<EngineCache*>(sqlite3_user_data(context))),
          longest_(sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LENGTH, -1)) {}

    const GatheredParts& parts() const { return parts_; }
    const geometry::Envelope& extent() const { return extent_; }
    bool isEmpty() const { return parts_.count() == 0 && extent_.isEmpty(); }
    const work::Cancellation& cancellation() const { return cancellation_; }
    int srid() const { return srid_; }
    /// More bytes than a value may have.
    bool isTooLarge() const { return parts_.size() > static_cast<std::size_t>(longest_); }

    void add(sqlite3_context* context, sqlite3_value* value) {
        const auto header = headerOf(value);
        if (header && takesSystem(header->srid) && parts_.add(*header)) {
            return;
        }
        if (const GeometryPtr geometry = toGeometry(context, value, true)) {
            parts_.add(*geometry::linearized(inSystem(geometry)));
        }
    }
    /// No more than the bounding box of it.
    void addExtent(sqlite3_context* context, sqlite3_value* value) {
        const auto header = headerOf(value);
        if (header && isSoundSpatialiteBlob(*header) && takesSystem(header->srid)) {
            extent_.add(header->envelope);
        } else if (const GeometryPtr geometry = toGeometry(context, value, true)) {
            extent_.add(inSystem(geometry)->envelope());
        }
    }

    /// Gives what became of the group, without coordinate system, in that of the group.
    void setResult(sqlite3_context* context, const std::shared_ptr<geometry::Geometry>& geometry) const {
        if (geometry) {
            geometry->setCoordSystem(coordSystem_);
        }
        if (coordSystem_ && srid_ == 0) {
            toOrvGeo(geometry, context, &cache_, false);
        } else {
            toGaia(geometry, context, &cache_);
        }
    }
    void setResult(sqlite3_context* context, const std::string& blob) const {
        if (coordSystem_ && srid_ == 0 && !blob.empty()) { // which a SpatiaLite blob cannot name
            const auto header = readSpatialiteHeader(blob);
            setResult(context, geometry::GeometryFactory::fromSpatialite(header->kind, header->content,
                                                                         header->littleEndian, nullptr));
        } else if (!blob.empty()) {
            sqlite3_result_blob64(context, blob.data(), blob.size(), SQLITE_TRANSIENT);
        }
    }

private:
    static std::optional<SpatialiteHeader> headerOf(sqlite3_value* value) {
        if (sqlite3_value_type(value) != SQLITE_BLOB) {
            return std::nullopt;
        }
        return readSpatialiteHeader({static_cast<const char*>(sqlite3_value_blob(value)),
                                     static_cast<std::size_t>(sqlite3_value_bytes(value))});
    }

    /// Whether a geometry with this SRID needs no reprojection. The first one determines the system.
    bool takesSystem(int srid) {
        if (srid <= 0 || srid == srid_) {
            return true;
        }
        if (srid_ != 0 || coordSystem_) {
            return false;
        }
        srid_ = srid;
        coordSystem_ = cache_.get(srid);
        return true;
    }

    GeometryPtr inSystem(const GeometryPtr& geometry) {
        const std::shared_ptr<cs::CoordSystem> own = geometry->coordSystem();
        if (!own || (!coordSystem_ && srid_ != 0)) {
            return geometry;
        }
        if (!coordSystem_) {
            coordSystem_ = own;
            srid_ = own->epsg();
        }
        if (own == coordSystem_ || own->equals(*coordSystem_)) {
            return geometry;
        }
        if (GeometryPtr transformed = geometry->transformed(coordSystem_)) {
            return transformed;
        }
        throw std::runtime_error(
            QCoreApplication::translate("orvane::engine",
                                        "объект в системе координат %1 не переводится в %2, систему первого "
                                        "объекта группы")
                .arg(own->taggedString(), coordSystem_->taggedString())
                .toStdString());
    }

    EngineCache& cache_;
    const int longest_;
    GatheredParts parts_;
    geometry::Envelope extent_;
    std::shared_ptr<cs::CoordSystem> coordSystem_;
    int srid_ = 0;
    const work::Cancellation cancellation_;
};

/// What SQLite keeps for a group, filled with zeros at first.
struct State {
    Group* group;
};

/// The group of a step, begun by the first.
Group& groupOf(sqlite3_context* context) {
    auto* const state = static_cast<State*>(sqlite3_aggregate_context(context, sizeof(State)));
    if (!state) {
        throw std::bad_alloc();
    }
    if (!state->group) {
        state->group = new Group(context);
    }
    return *state->group;
}

/// Computes the result of a group that has parts. SQLite also ends the groups of a statement that was
/// cancelled or given up: those of a cancelled one are only let go.
template<typename Compute>
void endGroup(sqlite3_context* context, const Compute& compute) {
    barrier(context, [&] {
        const auto* const state = static_cast<State*>(sqlite3_aggregate_context(context, 0));
        const std::unique_ptr<const Group> group(state ? state->group : nullptr);
        if (group && !group->isEmpty()) {
            group->cancellation().check();
            compute(*group);
        }
    });
}

/// The parts of a group one after another.
geometry::NextGeometry partsOf(const Group& group) {
    return [&group, index = std::size_t(0)]() mutable {
        return index < group.parts().count() ? group.parts().part(index++) : nullptr;
    };
}

} // namespace

void GeometryAggregate::step(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        Group& group = groupOf(context);
        group.add(context, values[0]);
        if (group.isTooLarge()) {
            sqlite3_result_error_toobig(context);
        }
    });
}

void Extent::step(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] { groupOf(context).addExtent(context, values[0]); });
}

void Extent::final(sqlite3_context* context) {
    endGroup(context, [context](const Group& group) {
        group.setResult(context, geometry::rectangle(group.extent()));
    });
}

void Collect::final(sqlite3_context* context) {
    endGroup(context, [context](const Group& group) {
        group.setResult(context, group.parts().collected(group.srid(), group.cancellation()));
    });
}

void MakeLine::final(sqlite3_context* context) {
    endGroup(context, [context](const Group& group) {
        group.setResult(context, group.parts().line(group.srid(), group.cancellation()));
    });
}

void Union::final(sqlite3_context* context) {
    endGroup(context, [context](const Group& group) {
        group.setResult(context, geometry::unionOf(partsOf(group), group.cancellation()));
    });
}

void Polygonize::final(sqlite3_context* context) {
    endGroup(context, [context](const Group& group) {
        group.setResult(context, geometry::polygonized(partsOf(group), group.cancellation()));
    });
}

} // namespace orvane::engine
