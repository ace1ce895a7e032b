#include "host/adaptor/statistics/ValueStatistics.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace orvane::adaptor {

namespace {

/// Of a table that does not say how many it has.
constexpr std::int64_t assumedRows = 100'000;

/// Few enough that reading them is nothing beside the scan that a good plan saves.
std::int64_t wantedRows(std::int64_t tableRows) {
    return std::clamp<std::int64_t>(tableRows / 100, 1024, 4096);
}

} // namespace

void ValueStatistics::read(std::vector<int> attributes) {
    if (const auto revision = table_->revision(); revision != revision_) {
        columns_.clear();
        revision_ = revision;
    }
    std::erase_if(attributes, [this](int attribute) { return columns_.contains(attribute); });
    if (attributes.empty()) {
        return;
    }
    for (const int attribute : attributes) {
        columns_[attribute] = nullptr;
    }
    try {
        sample(attributes);
    } catch (const std::exception&) {
    }
}

void ValueStatistics::sample(const std::vector<int>& attributes) {
    const auto known = table_->featureCount();
    const auto wanted = wantedRows(known.value_or(assumedRows));
    const auto rows = table_->openSample(attributes, wanted);
    if (!rows) {
        return;
    }
    std::vector<std::pair<int, std::unique_ptr<ColumnStatistics>>> columns;
    for (const auto& column : declaration_.columns()) {
        if (std::find(attributes.begin(), attributes.end(), column.attribute) != attributes.end()) {
            columns.emplace_back(column.attribute, std::make_unique<ColumnStatistics>(column));
        }
    }
    std::int64_t count = 0;
    for (; rows->next(); ++count) {
        for (const auto& [attribute, statistics] : columns) {
            statistics->add(rows->cell(attribute), rows->run());
        }
    }
    const auto tableRows = known.value_or(count < wanted / 2 ? count : assumedRows);
    for (auto& [attribute, statistics] : columns) {
        statistics->finish(static_cast<double>(tableRows));
        columns_[attribute] = std::move(statistics);
    }
}

const ColumnStatistics* ValueStatistics::find(int attribute) const {
    const auto found = columns_.find(attribute);
    return found == columns_.end() || revision_ != table_->revision() ? nullptr : found->second.get();
}

} // namespace orvane::adaptor
