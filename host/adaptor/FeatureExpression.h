#pragma once

#include <host/adaptor/Export.h>
#include <orvane/Engine.h>
#include <orvane/engine/EngineExpression.h>

namespace orvane::adaptor {

/// A label, a style value or a computed column: one expression of the dialect, computed for one feature after
/// another. Its values are those that Select gives for the same expression over the table: geometries become
/// the same blobs, bytes stay bytes, dates and times are compared as texts.
///
///     adaptor::FeatureExpression label(*engine, *table->schema());
///     if (!label.setText(QStringLiteral("name & ' ' & Round(population / 1000) & 'k'")))
///         report(label.lastError());
///     draw(label.value(feature).toString());
///
/// Belongs to the thread of the engine, which has to have the adaptor's functions and outlive the object.
class ORVANE_ADAPTOR_EXPORT FeatureExpression : public engine::EngineExpression {
public:
    FeatureExpression(Engine& engine, const dp::TableSchema& schema);

    /// Translates and prepares an expression in place of the one before. False, with the reason for the user
    /// in lastError(), when it is no expression, or names what is not there.
    bool setText(const QString& expression);

    /// The value for a feature, a null variant for NULL; invalid when it cannot be computed, which is logged.
    QVariant value(const dp::FeaturePtr& feature);
    /// The same for many features at once, which is faster.
    QVector<QVariant> values(const std::vector<dp::FeaturePtr>& features);

    QVariant toExtensionValue(const QVariant& value) override;

private:
    Engine& engine_;
    bool usesGeometry_ = true; ///< the blob of a geometry that the expression does not read is not made
};

} // namespace orvane::adaptor
