#pragma once

#include "platform/dp/DataObject.h"
#include "platform/dp/FeatureId.h"

#include <memory>
#include <vector>

namespace orvane::dp {

/// Some features of one data object, in the order in which they were selected.
class Selection {
public:
    Selection() = default;
    Selection(std::shared_ptr<DataObject> object, std::vector<FeatureId> ids)
        : object_(std::move(object)), ids_(std::move(ids)) {}

    const std::shared_ptr<DataObject>& dataObject() const { return object_; }
    const std::vector<FeatureId>& ids() const { return ids_; }
    bool isEmpty() const { return !object_ || ids_.empty(); }

private:
    std::shared_ptr<DataObject> object_;
    std::vector<FeatureId> ids_;
};

} // namespace orvane::dp
