#pragma once

#include "host/postgres/connection/Connection.h"
#include "host/postgres/description/TableDescription.h"
#include "platform/dp/Feature.h"

#include <vector>

namespace orvane::postgres {

/// Edits of single rows as statements. Each returns a row for the row that it has changed. Throws
/// dp::EditError for a value that the server cannot hold.
class RowEdit {
public:
    explicit RowEdit(const TableDescription& table) : table_(table) {}

    /// What has no value is left to the server, which knows the column's default. Returns the new row's key.
    Command insertion(const dp::Feature& feature) const;
    Command update(const dp::Feature& changes, const std::vector<int>& positions) const;
    Command removal(const dp::FeatureId& id) const;

private:
    const ColumnDescription& column(int position) const {
        return table_.columns[static_cast<std::size_t>(position)];
    }
    std::string valueOf(const dp::Feature& feature, int position, std::vector<Argument>& arguments) const;
    std::string geometryOf(const dp::Feature& feature, int position, std::vector<Argument>& arguments) const;

    const TableDescription& table_;
};

} // namespace orvane::postgres
