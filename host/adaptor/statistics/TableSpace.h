#pragma once

#include "host/adaptor/statistics/SpaceStatistics.h"

#include "platform/dp/Table.h"

#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace orvane::adaptor {

/// The statistics of space of a table as it is, made of a sample when they are first asked for. Used from the
/// thread of the engine.
class TableSpace {
public:
    /// `table` is null once it was closed.
    explicit TableSpace(const std::shared_ptr<dp::Table>& table) : table_(table) {}

    /// Null where there is no sample to be had, or nothing in it.
    const SpaceStatistics* statistics();
    /// How many pairs match, the first of this table and the second of another, in the system of this one.
    /// None where one of them has no statistics.
    std::optional<double> countPairs(TableSpace& second, SpaceStatistics::Match match);

private:
    using Pair = std::pair<std::shared_ptr<const SpaceStatistics>, SpaceStatistics::Match>;

    std::shared_ptr<const SpaceStatistics> shared();
    std::shared_ptr<const SpaceStatistics> sample() const;

    const std::shared_ptr<dp::Table>& table_;
    std::optional<std::uint64_t> revision_; ///< of the table that the statistics are of
    std::shared_ptr<const SpaceStatistics> statistics_;
    std::map<Pair, double> pairs_; ///< counted so far
};

} // namespace orvane::adaptor
