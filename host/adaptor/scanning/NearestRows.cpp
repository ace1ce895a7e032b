#include "host/adaptor/scanning/NearestRows.h"

#include <algorithm>

namespace orvane::adaptor {

namespace {

constexpr unsigned rowsBetweenChecks = 1024;

} // namespace

/// A row with its distance as one more attribute.
class NearestRows::Measured final : public dp::Cursor {
public:
    Measured(dp::Cursor& row, int distanceAttribute, std::optional<double> distance)
        : row_(row), distanceAttribute_(distanceAttribute), distance_(distance) {}

    bool next() override { return false; }
    dp::Cell cell(int attribute) override {
        return attribute != distanceAttribute_ ? row_.cell(attribute)
               : distance_                     ? dp::Cell::ofReal(*distance_)
                                               : dp::Cell();
    }
    dp::FeatureId featureId() override { return row_.featureId(); }

private:
    dp::Cursor& row_;
    int distanceAttribute_;
    std::optional<double> distance_;
};

bool NearestRows::IdLess::operator()(const dp::FeatureId& a, const dp::FeatureId& b) const {
    constexpr int longLong = QMetaType::LongLong;
    const QVariant& x = a.value();
    const QVariant& y = b.value();
    return x.userType() == longLong && y.userType() == longLong ? x.toLongLong() < y.toLongLong()
                                                                : x.toString() < y.toString();
}

NearestRows::NearestRows(VirtualTable& table, const dp::ScanRequest& request,
                         const geometry::GeometryPtr& centre, geometry::Nearness asked, std::size_t wanted,
                         bool isLooked, const work::Cancellation& cancellation)
    : table_(table), attributes_(request.attributes), request_(request),
      centre_(placedIn(table.table().coordSystem(), centre)), asked_(std::move(asked)),
      distanceAttribute_(table.table().schema()->numAttributes()),
      geometryAttribute_(table.table().schema()->geometryIndex()), cancellation_(cancellation) {
    auto& attributes = request_.attributes;
    if (geometryAttribute_ >= 0 &&
        std::find(attributes.begin(), attributes.end(), geometryAttribute_) == attributes.end()) {
        attributes.push_back(geometryAttribute_);
    }
    if (isLooked && !centre_->isEmpty()) { // to which no row has a distance
        search_.emplace(table_.spatialIndexing().tree(table_.table(), cancellation_), table_.table(),
                        *centre_, asked_, wanted);
    }
}

bool NearestRows::next() {
    while (!rows_ || !cursor_.next()) {
        if (!fetch()) {
            return false;
        }
    }
    return true;
}

bool NearestRows::fetch() {
    if (isAtEnd_) {
        return false;
    }
    cancellation_.check();
    rows_.emplace(attributes_,
                  std::vector<ArrangedRows::Key>{{distanceAttribute_, dp::TextCollation::Binary, false}});
    const auto found = search_ ? search_->next() : std::vector<NearestSearch::Found>();
    if (!found.empty()) {
        readFound(found);
    } else {
        readRest();
    }
    rows_->arrangeInOrder(cancellation_);
    cursor_.start(*rows_, rows_->all());
    return true;
}

void NearestRows::readFound(const std::vector<NearestSearch::Found>& found) {
    Distances distances;
    dp::ScanRequest request;
    request.attributes = attributes_;
    auto& ids = request.ids.emplace();
    for (const NearestSearch::Found& each : found) {
        distances.emplace(each.id, each.distance);
        ids.push_back(each.id);
    }
    const auto source = table_.table().openCursor(request); // without those that were removed meanwhile
    while (source->next()) {
        Measured row(*source, distanceAttribute_, distances[source->featureId()]);
        rows_->add(row);
    }
}

/// All that pass the terms and have not been found.
void NearestRows::readRest() {
    const bool isBegun = search_.has_value();
    const double reach = isBegun ? search_->reach() : 0.0;
    search_.reset();
    isAtEnd_ = true;
    request_.ids = table_.indexing().find(request_.terms, cancellation_);
    if (request_.ids && request_.ids->empty()) {
        return;
    }
    TermFilter filter;
    filter.assign(request_.terms);
    const auto source = table_.table().openCursor(request_);
    const auto coordSystem = table_.table().coordSystem();
    for (unsigned row = 1; source->next(); ++row) {
        if (row % rowsBetweenChecks == 0) {
            cancellation_.check();
        }
        if (!filter.accepts(*source)) {
            continue;
        }
        const dp::Cell cell = geometryAttribute_ < 0 ? dp::Cell() : source->cell(geometryAttribute_);
        const auto own = cell.type() == dp::CellType::Wkb ? decodeWkb(cell.view(), coordSystem) : nullptr;
        const auto distance = measuredDistance(own, *centre_, asked_);
        if (!isBegun || (distance && *distance > reach)) {
            Measured measured(*source, distanceAttribute_, distance);
            rows_->add(measured);
        }
    }
}

} // namespace orvane::adaptor
