#pragma once

#include "platform/dp/Feature.h"
#include "platform/dp/TableSchema.h"
#include <orvane/engine/Export.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QUuid>
#include <QVariant>

namespace orvane::engine {

class EngineCache;

/// Computes one SQL expression for one feature at a time, as labels and styles need it: the feature's
/// attributes become the one row of a temporary table of the engine database, on which a prepared statement
/// selects the expression. The expression is SQLite text over the table's columns, as Engine::translate makes
/// it of a dialect expression.
///
/// Construct, setExpression, then fill and exec for each feature. Belongs to the thread of the database.
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
    /// Makes the feature the row. False when it cannot be stored; the table is then empty.
    bool fill(const dp::FeaturePtr& feature);
    /// The value of the expression for the row; invalid on failure and without a row.
    QVariant exec();

    /// Empty for a schema without attributes.
    QString tableName() const;
    /// The name of the column of an attribute, as SQL.
    QString fieldName(const dp::AttributeDefinitionPointer& attribute) const;
    /// The columns of the temporary table as the database reports them.
    QStringList columns() const;
    /// The type of the prepared expression; QVariant::String when it is not known.
    QVariant::Type type() const;
    /// The names of the schema's first geometry and style attribute; empty without one.
    const QString& geoName() const { return geoName_; }
    const QString& styleName() const { return styleName_; }

    const QString& lastError() const { return lastErrorText_; }
    bool isValid() const { return valid_; }
    /// Marks the object as failed, with a text of the owner's.
    void setError(QString text);

    /// A value as an SQL literal; reals with six significant digits.
    QString toStr(const QVariant& value);
    /// A value as it is bound: numbers as numbers, dates and times as texts.
    QVariant toValue(const QVariant& value);

    /// Hooks for types that the engine does not know.
    virtual ExtensionString toExtensionString(const QVariant& value);
    virtual QVariant toExtensionValue(const QVariant& value);

private:
    void createTable(const dp::TableSchema& schema, EngineCache* cache);
    bool insert(QSqlQuery& query, const dp::Feature& feature);

    QUuid tableId_;
    QSqlDatabase database_;
    QSqlQuery query_;
    QString lastErrorText_;
    QString geoName_;
    QString styleName_;
    bool valid_ = true;
};

} // namespace orvane::engine
