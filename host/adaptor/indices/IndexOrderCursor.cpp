#include "host/adaptor/indices/IndexOrderCursor.h"

#include <orvane/engine/EngineCache.h>

#include <algorithm>

namespace orvane::adaptor {

namespace {

constexpr std::size_t largestPortion = 4096;
constexpr std::size_t portionGrowth = 4;

} // namespace

IndexOrderCursor::IndexOrderCursor(std::shared_ptr<dp::Table> table, engine::EngineCache& cache,
                                   std::unique_ptr<engine::EngineIndices::RowLookup> order,
                                   std::vector<int> attributes, std::vector<ArrangedRows::Key> keys,
                                   const work::Cancellation& cancellation)
    : table_(std::move(table)), cache_(cache), order_(std::move(order)), attributes_(std::move(attributes)),
      keys_(std::move(keys)), cancellation_(cancellation) {
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
    dp::ScanRequest request;
    request.attributes = attributes_;
    auto& ids = request.ids.emplace(std::move(waiting_));
    waiting_.clear();
    for (qint64 row = 0; ids.size() < portion_ && order_->next(row);) {
        ids.push_back(cache_.intToId(row));
    }
    if (ids.empty()) {
        return false;
    }
    const bool mayGoOn = ids.size() == portion_;
    rows_.emplace(attributes_, keys_);
    const auto source = table_->openCursor(request); // without those that were removed meanwhile
    while (source->next()) {
        rows_->add(*source);
    }
    rows_->arrangeInOrder(cancellation_);
    ArrangedRows::Range complete = rows_->all();
    if (mayGoOn && keys_.size() > 1 && complete.end > 0) {
        for (std::uint32_t place = rows_->lastGroup(); place < complete.end; ++place) {
            waiting_.push_back(rows_->featureId(place));
        }
        complete.end = rows_->lastGroup();
    }
    portion_ = std::max(std::min(portion_ * portionGrowth, largestPortion), waiting_.size() * portionGrowth);
    cursor_.start(*rows_, complete);
    return true;
}

} // namespace orvane::adaptor
