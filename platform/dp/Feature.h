#pragma once

#include "platform/dp/FeatureId.h"
#include "platform/dp/TableSchema.h"

#include <QVariant>
#include <QVector>

#include <memory>

namespace orvane::dp {

/// One feature with all its attributes as variants: the way of single features, not of scans (see Cursor).
/// SQL NULL is an invalid variant.
class ORVANE_PLATFORM_EXPORT Feature {
public:
    Feature(std::shared_ptr<const TableSchema> schema, FeatureId id);

    const TableSchema& schema() const { return *schema_; }
    const FeatureId& id() const { return id_; }
    void setId(FeatureId id) { id_ = std::move(id); }

    int numAttributes() const { return schema_->numAttributes(); }
    /// By position in the schema. A copy shares the values until one of the two changes.
    const QVector<QVariant>& values() const { return values_; }
    /// The value at a position; invalid outside the schema.
    QVariant getAttribute(int position) const;
    /// Stores the value and returns true when the position exists and its value is valid.
    bool tryGetAttribute(int position, QVariant& value) const;
    /// Ignored outside the schema.
    void setAttribute(int position, QVariant value);

private:
    std::shared_ptr<const TableSchema> schema_;
    FeatureId id_;
    QVector<QVariant> values_;
};

using FeaturePtr = std::shared_ptr<Feature>;

} // namespace orvane::dp
