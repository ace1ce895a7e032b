#pragma once

#include "platform/Export.h"

#include <QSharedData>
#include <QSharedDataPointer>
#include <QString>

#include <memory>

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::dp {

/// Name and value type of one column of a table. Shared by value through AttributeDefinitionPointer.
class ORVANE_PLATFORM_EXPORT AttributeDefinition : public QSharedData {
public:
    virtual ~AttributeDefinition();
    virtual AttributeDefinition* clone() const = 0;

    const QString& name() const { return name_; }
    /// Qt meta-type id of the values.
    int type() const { return type_; }

protected:
    AttributeDefinition(QString name, int type);
    AttributeDefinition(const AttributeDefinition&) = default;

private:
    QString name_;
    int type_;
};

/// A column of plain values: numbers, texts, dates, bytes.
class ORVANE_PLATFORM_EXPORT SimpleAttributeDefinition : public AttributeDefinition {
public:
    struct Options {
        int length = 0;    ///< characters or digits, 0 when not limited
        int precision = 0; ///< decimal places
        bool unique = false;
        bool notNull = false;
    };

    SimpleAttributeDefinition(QString name, int type);
    SimpleAttributeDefinition(QString name, int type, Options options);
    SimpleAttributeDefinition* clone() const override;

    int length() const { return options_.length; }
    int precision() const { return options_.precision; }
    bool isUnique() const { return options_.unique; }
    bool isNotNull() const { return options_.notNull; }

private:
    Options options_;
};

/// The geometry column. Values are std::shared_ptr<const geometry::Geometry> in variants.
class ORVANE_PLATFORM_EXPORT GeometryAttributeDefinition : public AttributeDefinition {
public:
    GeometryAttributeDefinition(QString name, std::shared_ptr<cs::CoordSystem> coordSystem);
    GeometryAttributeDefinition* clone() const override;

    /// Null when the layer names no coordinate system.
    const std::shared_ptr<cs::CoordSystem>& coordSystem() const { return coordSystem_; }

private:
    std::shared_ptr<cs::CoordSystem> coordSystem_;
};

/// The style (rendition) column: texts.
class ORVANE_PLATFORM_EXPORT RenditionAttributeDefinition : public AttributeDefinition {
public:
    explicit RenditionAttributeDefinition(QString name);
    RenditionAttributeDefinition* clone() const override;
};

using AttributeDefinitionPointer = QSharedDataPointer<AttributeDefinition>;

} // namespace orvane::dp

template<>
ORVANE_PLATFORM_EXPORT orvane::dp::AttributeDefinition*
QSharedDataPointer<orvane::dp::AttributeDefinition>::clone();
