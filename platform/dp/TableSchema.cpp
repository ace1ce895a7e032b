#include "platform/dp/TableSchema.h"

#include <algorithm>
#include <utility>

namespace orvane::dp {

namespace {

template<typename Predicate>
int position(const QVector<AttributeDefinitionPointer>& attributes, const Predicate& predicate) {
    const auto found = std::find_if(attributes.begin(), attributes.end(), predicate);
    return found == attributes.end() ? -1 : static_cast<int>(found - attributes.begin());
}

template<typename Definition>
int firstOf(const QVector<AttributeDefinitionPointer>& attributes) {
    return position(attributes, [](const AttributeDefinitionPointer& attribute) {
        return dynamic_cast<const Definition*>(attribute.constData()) != nullptr;
    });
}

} // namespace

TableSchema::TableSchema(QVector<AttributeDefinitionPointer> attributes)
    : attributes_(std::move(attributes)), geometryIndex_(firstOf<GeometryAttributeDefinition>(attributes_)),
      styleIndex_(firstOf<RenditionAttributeDefinition>(attributes_)) {}

int TableSchema::indexOf(const QString& name) const {
    return position(attributes_, [&name](const AttributeDefinitionPointer& attribute) {
        return attribute->name().compare(name, Qt::CaseInsensitive) == 0;
    });
}

} // namespace orvane::dp
