#include "host/adaptor/IndexOrderCursor.h"

#include <orvane/engine/EngineCache.h>

#include <algorithm>
#include <unordered_map>

namespace orvane::adaptor {

namespace {

constexpr std::size_t largestPortion = 4096;

} // namespace

IndexOrderCursor::IndexOrderCursor(std::shared_ptr<dp::Table> table, engine::EngineCache& cache,
                                   std::unique_ptr<engine::EngineIndices::RowLookup> order,
                                   std::vector<int> attributes)
    : table_(std::move(table)), cache_(cache), order_(std::move(order)), attributes_(std::move(attributes)) {
    order_->start({});
}

bool IndexOrderCursor::next() {
    while (!rows_ || !cursor_.next()) {
        if (!fetch()) {
            return false;
        }
    }
    return true;
}

/// Reads the next portion; false when the index is at its end.
bool IndexOrderCursor::fetch() {
    constexpr std::uint32_t missing = ~std::uint32_t{0};
    dp::ScanRequest request;
    request.attributes = attributes_;
    auto& ids = request.ids.emplace();
    std::unordered_map<qint64, std::uint32_t> places;
    for (qint64 row = 0; ids.size() < portion_ && order_->next(row);) {
        places.emplace(row, static_cast<std::uint32_t>(ids.size()));
        ids.push_back(cache_.intToId(row));
    }
    if (ids.empty()) {
        return false;
    }
    portion_ = std::min(portion_ * 4, largestPortion);
    std::vector<std::uint32_t> order(ids.size(), missing);
    rows_.emplace(attributes_, std::vector<ArrangedRows::Key>());
    const auto source = table_->openCursor(request);
    while (source->next()) {
        order[places.at(cache_.assignIdToInt(source->featureId()))] =
            static_cast<std::uint32_t>(rows_->rowCount());
        rows_->add(*source);
    }
    order.erase(std::remove(order.begin(), order.end(), missing), order.end()); // removed meanwhile
    rows_->arrange(std::move(order));
    cursor_.start(*rows_, rows_->all());
    return true;
}

} // namespace orvane::adaptor
