#pragma once

#include "engine/expression/StoredValue.h"
#include "platform/dp/Feature.h"
#include "platform/dp/SqliteStatement.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace orvane::engine {

/// The one row of an evaluator's temporary table. Labels are computed for each feature that is drawn, and
/// writing a row into a table costs ten times as much as a label: so the table is a virtual one, whose row is
/// what the object holds. Values are read as a table of the same columns would give them back, converted by
/// the affinity of the column. Belongs to the thread of the database.
class FeatureRow {
public:
    /// What stands for a value that is neither standard nor a text; invalid for no opinion. May throw.
    using Extension = std::function<QVariant(const QVariant&)>;

    /// Makes the module "name" of the database, in which "Create Virtual Table name Using name" makes the
    /// table. `definitions` are the texts of the columns. Throws err::SqliteException.
    FeatureRow(sqlite3* database, QString name, const QStringList& definitions, Extension extension);
    /// The table should be dropped before; one that cannot be stays without a row.
    ~FeatureRow();
    FeatureRow(const FeatureRow&) = delete;
    FeatureRow& operator=(const FeatureRow&) = delete;

    /// Learns the columns of the table, once it is made. Throws err::SqliteException.
    void readColumns();

    bool isInTransaction() const;

    void clear();
    /// Throws std::runtime_error for a feature with an attribute that the table lacks; there is no row then.
    void set(const dp::Feature& feature);
    /// While it is set, the first scan of the table goes on to another row where `advance` answers true: one
    /// execution reads many features.
    void setAdvance(std::function<bool()> advance);
    /// Whether the table was scanned a second time since setAdvance: a query within the expression reads it,
    /// so that each feature needs an execution of its own.
    bool isReadTwice() const { return state_->numScans > 1; }

    /// Before an expression is prepared over the table: notes anew which columns are used.
    void startExpression() { state_->usedColumns = 0; }
    /// Another statement for the expression that has been prepared since startExpression: it takes the values
    /// as parameters, which spares SQLite the transaction and the cursor of one that reads a table. Null when
    /// the expression needs the table.
    std::unique_ptr<dp::SqliteStatement> prepareForValues(const QString& expression);
    /// Binds the row to that statement. False without a row, and where a value is not of the class that its
    /// column declares: only the table shows such a value as it is.
    bool bindTo(dp::SqliteStatement& statement) const;

    struct Column {
        QByteArray name; ///< UTF-8
        QByteArray collation;
        Affinity affinity = Affinity::Blob;
        int attribute = -1; ///< of the features, which have it in this column; -1 for none
        std::string text;   ///< of the row, in UTF-8
    };
    /// What the table shares, so that it may outlive this object.
    struct State {
        QByteArray declaration;
        std::vector<Column> columns;
        QVector<QVariant> values;           ///< of the feature, by attribute
        std::vector<QVariant> replacements; ///< what the extension made of them; invalid where it did not
        bool hasRow = false;
        std::function<bool()> advance; ///< makes the next feature the row; empty for a single one
        int numScans = 0;              ///< since `advance` was set
        std::uint64_t usedColumns = 0; ///< by statements; one bit for each, the last for all from there on

        /// The row's value as the column stores it; NULL without a row.
        dp::Cell cell(std::size_t column);
    };

private:
    QVariant replacementOf(const QVariant& value) const;
    void follow(const dp::TableSchema& schema);
    std::size_t columnOf(const dp::AttributeDefinition& attribute) const;

    sqlite3* database_;
    QString name_;
    Extension extension_;
    std::shared_ptr<State> state_;
    QVector<dp::AttributeDefinitionPointer> attributes_; ///< that the columns know their places in
    std::vector<std::size_t> parameters_;                ///< the columns of the statement with parameters
};

} // namespace orvane::engine
