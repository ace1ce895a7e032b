#include "platform/geometry/shapes/Geometry.h"

#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/shapes/Curves.h"

namespace orvane::geometry {

Geometry::Geometry(const Geometry& other)
    : Serializable(other), coordSystem_(other.coordSystem_), type_(other.type_),
      dimensions_(other.dimensions_) {
    KeptForm& shared = other.keptForm();
    shared.references_.fetch_add(1, std::memory_order_relaxed);
    keptForm_.store(&shared, std::memory_order_relaxed);
}

Geometry::~Geometry() {
    KeptForm* form = keptForm_.load(std::memory_order_acquire);
    if (form && form->references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete form;
    }
}

void Geometry::setCoordSystem(std::shared_ptr<cs::CoordSystem> coordSystem) {
    coordSystem_ = std::move(coordSystem);
}

KeptForm& Geometry::keptForm() const {
    KeptForm* form = keptForm_.load(std::memory_order_acquire);
    if (!form) {
        auto made = std::make_unique<KeptForm>();
        if (keptForm_.compare_exchange_strong(form, made.get(), std::memory_order_acq_rel)) {
            return *made.release();
        }
    }
    return *form;
}

GeometryPtr Geometry::transformed(const std::shared_ptr<cs::CoordSystem>& target) const {
    if (!target || !coordSystem_) {
        return nullptr;
    }
    if (coordSystem_ == target || coordSystem_->equals(*target)) {
        const std::shared_ptr<Geometry> copy = clone();
        copy->setCoordSystem(target);
        return copy;
    }
    const auto transformer = cs::Transformer::between(*coordSystem_, *target);
    if (!transformer) {
        return nullptr;
    }
    const std::shared_ptr<Geometry> result =
        mapped([&transformer](double* positions, std::size_t count, Dimensions dimensions) {
            return transformer->transform(positions, count, strideOf(dimensions), hasZ(dimensions));
        });
    if (result) {
        result->setCoordSystem(target);
    }
    return result;
}

} // namespace orvane::geometry
