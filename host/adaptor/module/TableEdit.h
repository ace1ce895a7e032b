#pragma once

#include "host/adaptor/tables/VirtualTable.h"

#include <QCoreApplication>

#include <sqlite3.h>

#include <span>
#include <vector>

namespace orvane::adaptor {

/// Carries out the edits of one row that SQLite asks for (xUpdate), through the edit operations of the table.
/// Values are converted to the types of the attributes; one that does not fit, and NULL where it may not
/// stand, throws dp::EditError with the column's name. The provider's transaction around the edits is the
/// module's business.
class TableEdit {
public:
    explicit TableEdit(VirtualTable& table) : table_(table) {}

    /// `values` has one value for each declared column. Returns the row number of the new feature.
    sqlite3_int64 insert(std::span<sqlite3_value*> values);
    /// Changes the columns that the statement names; the others keep what they have.
    void update(sqlite3_int64 rowNumber, std::span<sqlite3_value*> values);
    void remove(sqlite3_int64 rowNumber);

private:
    dp::FeatureId featureId(sqlite3_int64 rowNumber) const;
    /// Converts the values, and returns the positions of those that the statement names.
    std::vector<int> assign(dp::Feature& feature, std::span<sqlite3_value*> values);

    VirtualTable& table_;
};

/// Runs an edit of the provider; its failures name the table.
template<class Edit>
auto inTable(const QString& table, Edit edit) {
    try {
        return edit();
    } catch (const dp::EditError& error) {
        throw dp::EditError(QCoreApplication::translate("orvane::adaptor", "Таблица %0: %1")
                                .arg(table, QString::fromUtf8(error.what()))
                                .toStdString());
    }
}

} // namespace orvane::adaptor
