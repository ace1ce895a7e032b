#include "host/adaptor/statistics/TableSpace.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"

#include <exception>
#include <vector>

namespace orvane::adaptor {

namespace {

constexpr std::int64_t sampledRows = 4096;
/// Counted for so many other tables, the pairs are counted anew.
constexpr std::size_t mostPairs = 64;

} // namespace

const SpaceStatistics* TableSpace::statistics() {
    return shared().get();
}

std::shared_ptr<const SpaceStatistics> TableSpace::shared() {
    const auto revision = table_ ? std::optional(table_->revision()) : std::nullopt;
    if (!revision || revision_ != revision) {
        pairs_.clear();
        statistics_ = revision ? sample() : nullptr;
        revision_ = revision;
    }
    return statistics_;
}

/// A table that cannot be read fails when it is scanned, not here.
std::shared_ptr<const SpaceStatistics> TableSpace::sample() const try {
    const int attribute = table_->schema()->geometryIndex();
    const auto rows = attribute < 0 ? nullptr : table_->openSample({attribute}, sampledRows);
    if (!rows) {
        return nullptr;
    }
    std::vector<geometry::Envelope> envelopes;
    std::int64_t numRows = 0;
    constexpr double largest = SpaceStatistics::largest;
    const geometry::Envelope reckonable{-largest, -largest, largest, largest};
    for (; rows->next(); ++numRows) {
        const dp::Cell cell = rows->cell(attribute);
        const auto envelope =
            cell.type() == dp::CellType::Wkb ? geometry::envelopeOfWkb(cell.view()) : std::nullopt;
        if (envelope && !envelope->isEmpty() && reckonable.contains(*envelope)) {
            envelopes.push_back(*envelope);
        }
    }
    if (envelopes.empty()) {
        return nullptr;
    }
    const auto share = static_cast<double>(envelopes.size()) / static_cast<double>(numRows);
    return std::make_shared<SpaceStatistics>(
        envelopes, share * static_cast<double>(table_->featureCount().value_or(numRows)));
} catch (const std::exception&) {
    return nullptr;
}

std::optional<double> TableSpace::countPairs(TableSpace& second, SpaceStatistics::Match match) {
    const auto own = shared();
    const auto other = second.shared();
    if (!own || !other) {
        return std::nullopt;
    }
    const auto [found, isNew] = pairs_.try_emplace({other, match}, 0.0);
    if (isNew) {
        const auto system = table_->coordSystem();
        const auto theirs = second.table_->coordSystem();
        const bool isElsewhere = system && theirs && !system->equals(*theirs);
        found->second = isElsewhere
                            ? SpaceStatistics::countPairs(*own, other->inSystem(*system, *theirs), match)
                            : SpaceStatistics::countPairs(*own, *other, match);
    }
    const double count = found->second;
    if (pairs_.size() > mostPairs) {
        pairs_.clear();
    }
    return count;
}

} // namespace orvane::adaptor
