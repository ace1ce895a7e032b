#pragma once

#include "platform/dp/Feature.h"
#include "platform/dp/TableSchema.h"
#include <orvane/engine/Export.h>

#include <QSqlDatabase>
#include <QStringList>
#include <QUuid>
#include <QVariant>

#include <memory>
#include <vector>

namespace orvane::dp {
class SqliteStatement;
}
namespace orvane::work {
class Cancellation;
}

namespace orvane::engine {

class EngineCache;
class FeatureRow;

/// Computes one SQL expression for one feature at a time, as labels and styles need it: the feature's
/// attributes become the one row of a temporary table of the engine database, on which a prepared statement
/// selects the expression. The table can be read, but not written, by any statement. The expression is SQLite
/// text over the table's columns, as Engine::translate makes it of a dialect expression.
///
/// Construct, setExpression, then fill and exec for each feature. What can be prepared is prepared once, so
/// that a feature costs about what a row of a query does. Belongs to the thread of the database.
class ORVANE_ENGINE_EXPORT EngineExpression {
public:
    /// How a value of a type that the engine does not know is written.
    struct ExtensionString {
        QString text;
        bool handled = false;
        bool quote = true; ///< the text has to be quoted
    };

    /// Makes the temporary table; a schema without attributes needs none. A failure leaves the object
    /// invalid.
    EngineExpression(QSqlDatabase database, const dp::TableSchema& schema, EngineCache* cache);
    virtual ~EngineExpression();
    EngineExpression(const EngineExpression&) = delete;
    EngineExpression& operator=(const EngineExpression&) = delete;

    /// Prepares an expression in place of the one before; returns isValid().
    bool setExpression(const QString& expression);
    /// Makes the feature the row. False for a feature with an attribute that the table lacks, the table is
    /// then empty, and inside a transaction of the connection. Features of one schema are the fast case:
    /// their schemas share one list of attributes.
    bool fill(const dp::FeaturePtr& feature);
    /// The value of the expression for the row, a null variant for NULL; invalid on failure and without a
    /// row.
    QVariant exec();

    /// The values for many features, in their order, each as fill and exec would give it: one execution of
    /// the statement goes over all of them, which takes about three quarters of the time. When it is
    /// cancelled (Engine::cancelQuery), the values from there on are invalid.
    QVector<QVariant> execAll(const std::vector<dp::FeaturePtr>& features);

    /// Empty for a schema without attributes.
    QString tableName() const;
    /// The name of the column of an attribute, as SQL.
    QString fieldName(const dp::AttributeDefinitionPointer& attribute) const;
    /// The columns of the temporary table as the database reports them.
    QStringList columns() const;
    /// The type of the prepared expression: that of the column, or of the value for the row. QVariant::String
    /// while neither tells.
    QVariant::Type type() const;
    /// The names of the schema's first geometry and style attribute; empty without one.
    const QString& geoName() const { return geoName_; }
    const QString& styleName() const { return styleName_; }

    /// What the table or the last expression could not be made for; empty when they could.
    const QString& lastError() const { return lastErrorText_; }
    /// Whether the table and the last expression could be made.
    bool isValid() const { return valid_; }
    /// Marks the object as failed, with a text of the owner's.
    void setError(QString text);

    /// A value as an SQL literal; reals with six significant digits.
    QString toStr(const QVariant& value);
    /// A value as it is bound: numbers as numbers, dates and times as texts.
    QVariant toValue(const QVariant& value);

    /// Hooks for types that the engine does not know: the literal, when `handled` is set, and the value to
    /// bind, when it is valid. Otherwise the value's text serves.
    virtual ExtensionString toExtensionString(const QVariant& value);
    virtual QVariant toExtensionValue(const QVariant& value);

private:
    void createTable(const dp::TableSchema& schema, EngineCache* cache);
    bool setRow(const dp::FeaturePtr& feature);
    void logFailure(const QString& reason) const;
    bool execFrom(const std::vector<dp::FeaturePtr>& features, std::size_t& next, QVector<QVariant>& values,
                  const work::Cancellation& cancellation);

    QUuid tableId_;
    QSqlDatabase database_;
    std::unique_ptr<FeatureRow> row_;                 ///< null without a table
    QString sql_;                                     ///< over the table
    std::unique_ptr<dp::SqliteStatement> expression_; ///< of sql_; null where it could not be prepared
    std::unique_ptr<dp::SqliteStatement> ofValues_; ///< FeatureRow::prepareForValues; null where it cannot be
    QString lastErrorText_;
    QString geoName_;
    QString styleName_;
    bool valid_ = true;
};

} // namespace orvane::engine
