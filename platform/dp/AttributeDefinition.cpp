#include "platform/dp/AttributeDefinition.h"

#include "platform/geometry/shapes/Geometry.h"

#include <utility>

template<>
orvane::dp::AttributeDefinition* QSharedDataPointer<orvane::dp::AttributeDefinition>::clone() {
    return d->clone();
}

namespace orvane::dp {

AttributeDefinition::AttributeDefinition(QString name, int type) : name_(std::move(name)), type_(type) {}

AttributeDefinition::~AttributeDefinition() = default;

SimpleAttributeDefinition::SimpleAttributeDefinition(QString name, int type)
    : SimpleAttributeDefinition(std::move(name), type, Options()) {}

SimpleAttributeDefinition::SimpleAttributeDefinition(QString name, int type, Options options)
    : AttributeDefinition(std::move(name), type), options_(options) {}

SimpleAttributeDefinition* SimpleAttributeDefinition::clone() const {
    return new SimpleAttributeDefinition(*this);
}

GeometryAttributeDefinition::GeometryAttributeDefinition(QString name,
                                                         std::shared_ptr<cs::CoordSystem> coordSystem)
    : AttributeDefinition(std::move(name), qMetaTypeId<std::shared_ptr<const geometry::Geometry>>()),
      coordSystem_(std::move(coordSystem)) {}

GeometryAttributeDefinition* GeometryAttributeDefinition::clone() const {
    return new GeometryAttributeDefinition(*this);
}

RenditionAttributeDefinition::RenditionAttributeDefinition(QString name)
    : AttributeDefinition(std::move(name), QMetaType::QString) {}

RenditionAttributeDefinition* RenditionAttributeDefinition::clone() const {
    return new RenditionAttributeDefinition(*this);
}

} // namespace orvane::dp
