#pragma once

#include "platform/dp/AttributeDefinition.h"

#include <QVector>

namespace orvane::dp {

/// The ordered attributes of a table.
class ORVANE_PLATFORM_EXPORT TableSchema {
public:
    TableSchema() = default;
    explicit TableSchema(QVector<AttributeDefinitionPointer> attributes);

    int numAttributes() const { return attributes_.size(); }
    const AttributeDefinitionPointer& at(int position) const { return attributes_.at(position); }
    const QVector<AttributeDefinitionPointer>& attributes() const { return attributes_; }

    /// Position of the attribute of that name, letter case ignored; -1 when there is none.
    int indexOf(const QString& name) const;
    /// Position of the first geometry attribute; -1 when there is none.
    int geometryIndex() const { return geometryIndex_; }
    /// Position of the first style attribute; -1 when there is none.
    int styleIndex() const { return styleIndex_; }

private:
    QVector<AttributeDefinitionPointer> attributes_;
    int geometryIndex_ = -1;
    int styleIndex_ = -1;
};

} // namespace orvane::dp
