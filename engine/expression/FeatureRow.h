#pragma once

#include "platform/dp/Feature.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct sqlite3;

namespace orvane::engine {

/// Whether values of a type are ones that the engine knows: numbers, dates and times.
bool isStandardType(int metaType);
/// What stands in the database for a value of such a type: a number, or a text for dates and times. Nothing
/// for other types.
std::optional<QVariant> standardValue(const QVariant& value);

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
    /// While it is set, a statement that asks for the row after the one that it was given gets another if
    /// `advance` answers true: one execution reads many features.
    void setAdvance(std::function<bool()> advance) { state_->advance = std::move(advance); }

    struct Column {
        enum Affinity : std::uint8_t { Blob, Text, Numeric, Integer, Real };

        QByteArray name; ///< UTF-8
        Affinity affinity = Blob;
        int attribute = -1; ///< of the features, which have it in this column; -1 for none
    };
    /// What the table shares, so that it may outlive this object.
    struct State {
        QByteArray declaration;
        std::vector<Column> columns;
        QVector<QVariant> values;           ///< of the feature, by attribute
        std::vector<QVariant> replacements; ///< what the extension made of them; invalid where it did not
        bool hasRow = false;
        std::function<bool()> advance; ///< makes the next feature the row; empty for a single one
    };

private:
    void follow(const dp::TableSchema& schema);
    Column* columnOf(const dp::AttributeDefinition& attribute);

    sqlite3* database_;
    QString name_;
    Extension extension_;
    std::shared_ptr<State> state_;
    QVector<dp::AttributeDefinitionPointer> attributes_; ///< that the columns know their places in
};

} // namespace orvane::engine
