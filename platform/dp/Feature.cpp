#include "platform/dp/Feature.h"

#include <utility>

namespace orvane::dp {

Feature::Feature(std::shared_ptr<const TableSchema> schema, FeatureId id)
    : schema_(std::move(schema)), id_(std::move(id)), values_(schema_->numAttributes()) {}

QVariant Feature::getAttribute(int position) const {
    return values_.value(position);
}

bool Feature::tryGetAttribute(int position, QVariant& value) const {
    if (position < 0 || position >= values_.size() || !values_.at(position).isValid()) {
        return false;
    }
    value = values_.at(position);
    return true;
}

void Feature::setAttribute(int position, QVariant value) {
    if (position >= 0 && position < values_.size()) {
        values_[position] = std::move(value);
    }
}

} // namespace orvane::dp
