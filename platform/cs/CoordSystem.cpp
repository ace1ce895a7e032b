#include "platform/cs/CoordSystem.h"

#include "platform/cs/CoordSystemImpl.h"

#include <array>
#include <atomic>

namespace orvane::cs {

CoordSystem::~CoordSystem() = default;

namespace {

std::uint64_t nextIdentity() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

/// The horizontal part: of a compound system its first member, of a bound one its source.
ProjPtr horizontalPart(PJ_CONTEXT* context, ProjPtr system) {
    for (;;) {
        switch (proj_get_type(system.get())) {
        case PJ_TYPE_COMPOUND_CRS: system.reset(proj_crs_get_sub_crs(context, system.get(), 0)); break;
        case PJ_TYPE_BOUND_CRS: system.reset(proj_get_source_crs(context, system.get())); break;
        default: return system;
        }
        if (!system) {
            return system;
        }
    }
}

} // namespace

ProjCoordSystem::ProjCoordSystem(int epsg, QString taggedString, std::string definition)
    : epsg_(epsg), taggedString_(std::move(taggedString)), definition_(std::move(definition)),
      identity_(nextIdentity()) {}

ProjCoordSystem::~ProjCoordSystem() = default;

ProjPtr ProjCoordSystem::projObject(PJ_CONTEXT* context) const {
    return ProjPtr(proj_create(context, definition_.c_str()));
}

const ProjCoordSystem::Facts& ProjCoordSystem::facts() const {
    std::call_once(factsOnce_, [this] {
        const auto context = projContext();
        ProjPtr system = projObject(context.get());
        if (!system) {
            return;
        }
        facts_.name = QString::fromUtf8(proj_get_name(system.get()));
        system = horizontalPart(context.get(), std::move(system));
        if (!system) {
            return;
        }
        const PJ_TYPE type = proj_get_type(system.get());
        facts_.isGeographic = type == PJ_TYPE_GEOGRAPHIC_2D_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS;
        const ProjPtr axes(proj_crs_get_coordinate_system(context.get(), system.get()));
        double unit = 0.0;
        if (axes && proj_cs_get_axis_info(context.get(), axes.get(), 0, nullptr, nullptr, nullptr, &unit,
                                          nullptr, nullptr, nullptr)) {
            facts_.unitFactor = unit;
        }
        const ProjPtr ellipsoid(proj_get_ellipsoid(context.get(), system.get()));
        if (ellipsoid) {
            proj_ellipsoid_get_parameters(context.get(), ellipsoid.get(), &facts_.semiMajorAxis, nullptr,
                                          nullptr, &facts_.inverseFlattening);
        }
    });
    return facts_;
}

namespace {

/// What PROJ said of two definitions, which it takes a millisecond to compare.
struct Comparison {
    std::uint64_t a = 0, b = 0; ///< identities; none is 0
    bool areEqual = false;
};

/// Where this thread keeps what it learnt of two systems, or of others.
Comparison& keptComparison(std::uint64_t a, std::uint64_t b) {
    constexpr std::size_t numKept = 64;
    thread_local std::array<Comparison, numKept> kept;
    return kept[(a * 31 + b) % numKept];
}

} // namespace

bool ProjCoordSystem::equals(const CoordSystem& other) const {
    if (this == &other) {
        return true;
    }
    if (const int code = other.epsg(); epsg_ != 0 && code != 0) {
        return epsg_ == code;
    }
    if (taggedString_ == other.taggedString()) {
        return true;
    }
    const auto* system = dynamic_cast<const ProjCoordSystem*>(&other);
    if (!system) {
        return false;
    }
    Comparison& known = keptComparison(identity_, system->identity_);
    if (known.a != identity_ || known.b != system->identity_) {
        const auto context = projContext();
        const ProjPtr a = projObject(context.get());
        const ProjPtr b = system->projObject(context.get());
        known = {identity_, system->identity_,
                 a && b &&
                     proj_is_equivalent_to_with_ctx(context.get(), a.get(), b.get(),
                                                    PJ_COMP_EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS)};
    }
    return known.areEqual;
}

} // namespace orvane::cs
