#include "platform/geometry/shapes/Geometry.h"

#include "platform/cs/CoordSystem.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/forms/GeosForm.h"
#include "platform/geometry/shapes/Curves.h"

namespace orvane::geometry {

Geometry::Geometry(const Geometry& other)
    : Serializable(other), coordSystem_(other.coordSystem_), type_(other.type_),
      dimensions_(other.dimensions_) {
    GeosForm& shared = other.geosForm();
    shared.addReference();
    geosForm_.store(&shared, std::memory_order_relaxed);
}

Geometry::~Geometry() {
    if (GeosForm* form = geosForm_.load(std::memory_order_acquire)) {
        form->release();
    }
}

void Geometry::setCoordSystem(std::shared_ptr<cs::CoordSystem> coordSystem) {
    coordSystem_ = std::move(coordSystem);
}

GeosForm& Geometry::geosForm() const {
    GeosForm* form = geosForm_.load(std::memory_order_acquire);
    if (!form) {
        auto* made = new GeosForm;
        if (geosForm_.compare_exchange_strong(form, made, std::memory_order_acq_rel)) {
            return *made;
        }
        made->release();
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
