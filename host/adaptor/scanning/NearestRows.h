#pragma once

#include "host/adaptor/indices/NearestSearch.h"
#include "host/adaptor/rows/ArrangedRows.h"
#include "host/adaptor/scanning/TermFilter.h"
#include "host/adaptor/tables/VirtualTable.h"

#include "platform/dp/ScanRequest.h"
#include "platform/work/Cancellation.h"

#include <map>
#include <memory>
#include <optional>

namespace orvane::adaptor {

/// The rows of a table in the order of their distance from a geometry, NULL first. A few are looked up in the
/// spatial index, more and more of them while more are asked for; in the end, or when the terms of the
/// request leave few rows over anyway, the others are read, measured and put in order at once.
class NearestRows final : public dp::Cursor {
public:
    /// `wanted` rows are likely all that is asked for. Without `isLooked` the spatial index is not used.
    /// Throws std::runtime_error, work::Cancelled, as next does.
    NearestRows(VirtualTable& table, const dp::ScanRequest& request, const geometry::GeometryPtr& centre,
                geometry::Nearness asked, std::size_t wanted, bool isLooked,
                const work::Cancellation& cancellation);

    bool next() override;
    dp::Cell cell(int attribute) override { return cursor_.cell(attribute); }
    dp::FeatureId featureId() override { return cursor_.featureId(); }
    /// NULL where the row has none.
    dp::Cell distance() { return cursor_.cell(distanceAttribute_); }

private:
    class Measured;
    struct IdLess {
        bool operator()(const dp::FeatureId& a, const dp::FeatureId& b) const;
    };
    using Distances = std::map<dp::FeatureId, std::optional<double>, IdLess>;

    bool fetch();
    void readFound(const std::vector<NearestSearch::Found>& found);
    void readRest();

    VirtualTable& table_;
    const std::vector<int> attributes_; ///< that are read from here
    dp::ScanRequest request_;           ///< with the geometry, to be measured
    const geometry::GeometryPtr centre_;
    const geometry::Nearness asked_;
    const int distanceAttribute_; ///< one beyond those of the table
    const int geometryAttribute_;
    const work::Cancellation cancellation_;
    std::optional<NearestSearch> search_; ///< none once the rest is read
    bool isAtEnd_ = false;
    std::optional<ArrangedRows> rows_;
    ArrangedCursor cursor_;
};

} // namespace orvane::adaptor
