#pragma once

#include <QVariant>

namespace orvane::dp {

/// Identifies a feature within its table: whatever value the provider uses, usually a 64-bit integer.
/// A default-constructed identifier is invalid.
class FeatureId {
public:
    FeatureId() = default;
    explicit FeatureId(QVariant value) : value_(std::move(value)) {}

    const QVariant& value() const { return value_; }
    operator QVariant() const { return value_; }
    bool isValid() const { return value_.isValid(); }

    friend bool operator==(const FeatureId& a, const FeatureId& b) { return a.value_ == b.value_; }
    friend bool operator!=(const FeatureId& a, const FeatureId& b) { return !(a == b); }

private:
    QVariant value_;
};

} // namespace orvane::dp
