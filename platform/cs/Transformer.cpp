#include "platform/cs/Transformer.h"

#include "platform/cs/CoordSystemImpl.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>

namespace orvane::cs {

struct Transformer::Impl {
    std::shared_ptr<PJ_CONTEXT> context; // before the operation: released after it
    ProjPtr operation;
    double outputFactor = 1.0; // what x and y of the result are multiplied by
};

namespace {

using Pair = std::pair<std::uint64_t, std::uint64_t>;
using TransformerPtr = std::shared_ptr<const Transformer>;

/// The pairs of one thread. Nulls record pairs without a way.
std::map<Pair, TransformerPtr>& knownTransformers() {
    thread_local std::map<Pair, TransformerPtr> transformers;
    return transformers;
}

/// The identity that no coordinate system has stands for "the geographic system beneath".
constexpr std::uint64_t geographicBase = 0;

/// Degrees in one unit of the angles of a geographic system (some count in grads).
double degreesPerUnit(PJ_CONTEXT* context, const PJ* geographic) {
    double radians = 0.0;
    const ProjPtr axes(proj_crs_get_coordinate_system(context, geographic));
    const bool known = axes && proj_cs_get_axis_info(context, axes.get(), 0, nullptr, nullptr, nullptr,
                                                     &radians, nullptr, nullptr, nullptr);
    // The factor of degrees is exactly 1, whatever the last digit of the definition's pi.
    const double degrees = radians * 180.0 / std::numbers::pi;
    return !known || std::abs(degrees - 1.0) < 1e-9 ? 1.0 : degrees;
}

ProjPtr operationBetween(PJ_CONTEXT* context, const PJ* source, const PJ* target) {
    if (!source || !target) {
        return nullptr;
    }
    const ProjPtr operation(proj_create_crs_to_crs_from_pj(context, source, target, nullptr, nullptr));
    return operation ? ProjPtr(proj_normalize_for_visualization(context, operation.get())) : nullptr;
}

} // namespace

std::shared_ptr<const Transformer> Transformer::find(const CoordSystem& from, const CoordSystem* to) {
    constexpr std::size_t limit = 512;
    const auto* source = dynamic_cast<const ProjCoordSystem*>(&from);
    const auto* target = dynamic_cast<const ProjCoordSystem*>(to);
    if (!source || (to && !target)) {
        return nullptr;
    }
    auto& known = knownTransformers();
    const Pair key(source->identity(), target ? target->identity() : geographicBase);
    if (const auto found = known.find(key); found != known.end()) {
        return found->second;
    }
    auto impl = std::make_unique<Impl>();
    impl->context = projContext();
    PJ_CONTEXT* context = impl->context.get();
    const ProjPtr sourceObject = source->projObject(context);
    ProjPtr targetObject;
    if (target) {
        targetObject = target->projObject(context);
    } else if (sourceObject) {
        targetObject.reset(proj_crs_get_geodetic_crs(context, sourceObject.get()));
        impl->outputFactor = targetObject ? degreesPerUnit(context, targetObject.get()) : 1.0;
    }
    impl->operation = operationBetween(context, sourceObject.get(), targetObject.get());
    TransformerPtr made(impl->operation ? new Transformer(std::move(impl)) : nullptr);
    if (known.size() >= limit) {
        known.clear();
    }
    known.emplace(key, made);
    return made;
}

std::shared_ptr<const Transformer> Transformer::between(const CoordSystem& from, const CoordSystem& to) {
    return find(from, &to);
}

std::shared_ptr<const Transformer> Transformer::toGeographic(const CoordSystem& from) {
    return find(from, nullptr);
}

Transformer::Transformer(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Transformer::~Transformer() = default;

bool Transformer::transform(double* positions, std::size_t count, std::size_t stride, bool hasZ) const {
    PJ* const operation = impl_->operation.get();
    if (count == 1) { // what the other call does, without its strides
        const PJ_COORD image = proj_trans(
            operation, PJ_FWD, proj_coord(positions[0], positions[1], hasZ ? positions[2] : 0.0, 0.0));
        std::copy_n(image.v, hasZ ? 3 : 2, positions);
    } else {
        const std::size_t step = stride * sizeof(double);
        proj_trans_generic(operation, PJ_FWD, positions, step, count, positions + 1, step, count,
                           hasZ ? positions + 2 : nullptr, hasZ ? step : 0, hasZ ? count : 0, nullptr, 0, 0);
    }
    bool complete = true;
    for (std::size_t i = 0; i < count; ++i) {
        double* position = positions + i * stride;
        position[0] *= impl_->outputFactor;
        position[1] *= impl_->outputFactor;
        complete = complete && std::isfinite(position[0]) && std::isfinite(position[1]);
    }
    return complete;
}

} // namespace orvane::cs
