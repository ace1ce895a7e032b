#pragma once

#include "host/adaptor/statistics/ColumnStatistics.h"

#include "platform/dp/Table.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace orvane::adaptor {

/// What is known of the values of a table's columns, from a sample that is read when the planner first needs
/// it and kept until the table changes. Used from the thread of the engine.
class ValueStatistics {
public:
    /// `table` is null once it was closed.
    ValueStatistics(const std::shared_ptr<dp::Table>& table, const TableDeclaration& declaration)
        : table_(table), declaration_(declaration) {}

    /// Reads a sample of those attributes of numbers or texts of which nothing is known. A failure to read
    /// leaves them unknown until the table changes: it is for the query to report.
    void read(std::vector<int> attributes);
    /// Null where nothing is known.
    const ColumnStatistics* find(int attribute) const;

private:
    void sample(const std::vector<int>& attributes);

    const std::shared_ptr<dp::Table>& table_;
    const TableDeclaration& declaration_;
    std::uint64_t revision_ = 0;                                     ///< of the table that was sampled
    std::map<int, std::unique_ptr<const ColumnStatistics>> columns_; ///< by attribute; null where it failed
};

} // namespace orvane::adaptor
