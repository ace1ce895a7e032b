#include "host/providers/reading/OccupiedIds.h"

#include "host/providers/datasets/DriverQuery.h"
#include "host/providers/datasets/GdalHandles.h"

#include <cstdlib>
#include <utility>

namespace orvane::files {

namespace {

using IdPair = std::pair<std::int64_t, std::int64_t>;

/// The rows of a query of two integers, but those with a NULL. They come as texts: GDAL takes a column of
/// numbers for one of 32 bits when the first one is.
std::vector<IdPair> queryPairs(GDALDatasetH dataset, const std::string& first, const std::string& second,
                               const std::string& from) {
    std::vector<IdPair> pairs;
    const DriverQuery query(dataset,
                            "SELECT CAST((" + first + ") AS TEXT), CAST((" + second + ") AS TEXT)" + from);
    while (const FeatureHandle row{OGR_L_GetNextFeature(query.layer())}) {
        if (OGR_F_IsFieldSetAndNotNull(row.get(), 0) && OGR_F_IsFieldSetAndNotNull(row.get(), 1)) {
            const auto number = [&row](int field) {
                return std::strtoll(OGR_F_GetFieldAsString(row.get(), field), nullptr, 10);
            };
            pairs.emplace_back(number(0), number(1));
        }
    }
    return pairs;
}

/// Takes gaps out of the ranges: between the first and the second of each pair, ascending, is no identifier.
std::vector<IdRange> without(const std::vector<IdPair>& gaps, const std::vector<IdRange>& ranges) {
    std::vector<IdRange> parts;
    auto gap = gaps.begin();
    for (IdRange range : ranges) {
        for (; gap != gaps.end() && gap->second <= range.high; ++gap) {
            if (gap->first >= range.low) {
                parts.push_back({range.low, gap->first});
                range.low = gap->second;
            }
        }
        parts.push_back(range);
    }
    return parts;
}

} // namespace

std::vector<IdRange> occupiedIds(GDALDatasetH dataset, const std::string& table,
                                 const std::string& identifier, std::int64_t rows) {
    const std::string from = " FROM " + table;
    const auto least = "SELECT min(" + identifier + ")" + from;
    const auto greatest = "SELECT max(" + identifier + ")" + from;
    const auto ends = queryPairs(dataset, least, greatest, {});
    if (ends.empty()) {
        return {};
    }
    std::vector<IdRange> ranges{{ends.front().first, ends.front().second}};
    constexpr int mostLooks = 4;
    constexpr std::int64_t lookedAt = 2048; // rows, were there no gaps: places are a fraction of that
    constexpr double worthAnotherLook = 0.9;
    for (int look = 0; look < mostLooks && lengthOf(ranges) > 2 * static_cast<double>(rows); ++look) {
        std::string places;
        for (const auto& place : randomRuns(ranges, lookedAt, 1)) {
            places += (places.empty() ? "(" : ", (") + std::to_string(place.low) + ")";
        }
        const auto gaps =
            queryPairs(dataset, greatest + " WHERE " + identifier + " < column1",
                       least + " WHERE " + identifier + " >= column1", " FROM (VALUES " + places + ")");
        auto narrowed = without(gaps, ranges);
        if (lengthOf(narrowed) > lengthOf(ranges) * worthAnotherLook) {
            break; // small gaps everywhere
        }
        ranges = std::move(narrowed);
    }
    return ranges;
}

} // namespace orvane::files
