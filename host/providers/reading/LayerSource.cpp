#include "host/providers/reading/LayerSource.h"

#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/reading/OccupiedIds.h"
#include "platform/utils/Quoting.h"

#include <cpl_string.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace orvane::files {

ValueClass LayerSource::valueClass(int attribute) const {
    switch (schema_->columns[static_cast<std::size_t>(attribute)].reading) {
    case LayerColumn::Reading::Integer: return ValueClass::Integer;
    case LayerColumn::Reading::Real: return ValueClass::Real;
    case LayerColumn::Reading::Bytes:
    case LayerColumn::Reading::Geometry: return ValueClass::Other;
    default: return ValueClass::Text;
    }
}

namespace {

/// More rows than this many bytes of a file cannot hold, were they packed as tightly as ZIP can.
std::int64_t mostRowsIn(GDALDatasetH dataset) {
    constexpr std::int64_t mostPerByte = 1100;
    std::int64_t bytes = 0;
    const CPLStringList files(GDALGetFileList(dataset));
    for (int i = 0; i < files.size(); ++i) {
        VSIStatBufL status;
        bytes += VSIStatL(files[i], &status) == 0 ? std::int64_t{status.st_size} : 0;
    }
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    return bytes == 0 || bytes > most / mostPerByte ? most : bytes * mostPerByte;
}

} // namespace

std::optional<std::int64_t> LayerSource::rowCount() {
    if (!rowCount_) {
        const GdalErrorScope errors;
        const auto lease = pool_->acquire();
        const OGRLayerH layer = findLayer(lease.dataset(), layerIndex_, layerName_);
        if (layer && !lease.isShared()) {
            OGR_L_SetAttributeFilter(layer, nullptr);
        }
        if (layer && lease.isShared()) {
            rowCount_ = countRows(lease.dataset(), layer);
        } else {
            rowCount_ = layer ? OGR_L_GetFeatureCount(layer, FALSE) : -1;
            if (*rowCount_ > mostRowsIn(lease.dataset())) {
                rowCount_ = -1; // what a damaged header claims
            }
            if (!errors.error().isEmpty()) { // cancelled, for instance
                rowCount_.reset();
                return std::nullopt;
            }
        }
    }
    return *rowCount_ < 0 ? std::nullopt : rowCount_;
}

bool LayerSource::countsExactly() {
    return OGR_L_TestCapability(makeScan().layer, OLCFastFeatureCount) != 0;
}

bool LayerSource::findsRows() {
    return OGR_L_TestCapability(makeScan().layer, OLCRandomRead) != 0;
}

bool LayerSource::isIndexed(int attribute) {
    return sqlTraits().isIndexed[static_cast<std::size_t>(attribute)];
}

bool LayerSource::hasSpatialIndex() {
    return schema_->schema->geometryIndex() >= 0 && (placeIndex().ofSql || placeIndex().tree);
}

/// None while edits have not been written: what drivers put off until then, its triggers cannot tell.
const LayerSource::PlaceIndex& LayerSource::placeIndex() {
    if (!placeIndex_) {
        const auto scan = makeScan();
        placeIndex_.emplace();
        if (!scan.lease.isShared()) {
            placeIndex_->ofSql = spatialIndexOf(scan.lease.dataset(), scan.layer);
            placeIndex_->tree = TreeFile::of(scan.lease.dataset(), scan.layer);
        }
    }
    return *placeIndex_;
}

std::optional<std::vector<std::int64_t>> LayerSource::rowsIn(const geometry::Envelope& window,
                                                             std::size_t most) {
    const auto& tree = placeIndex().tree;
    return tree ? tree->search(window, most) : std::nullopt;
}

std::optional<RowSource::Filter> LayerSource::filterOf(const std::vector<Test>& tests,
                                                       const std::optional<geometry::Envelope>& window) {
    const bool asksWindow = window && schema_->schema->geometryIndex() >= 0 && placeIndex().ofSql;
    if ((!asksWindow && tests.empty()) || !sqlTraits().evaluatesSql) {
        return std::nullopt;
    }
    Filter filter{asksWindow ? sqlOfWindow(*placeIndex().ofSql, sqlTraits().identifier, *window)
                             : std::string(),
                  asksWindow};
    for (const auto& test : tests) {
        const auto position = static_cast<std::size_t>(test.attribute);
        const auto text =
            sqlOfCondition(schema_->columns[position], valueClass(test.attribute), test.condition);
        if (!text) {
            continue;
        }
        filter.text += (filter.text.empty() ? "" : " AND ") + *text;
        filter.usesIndex = filter.usesIndex || sqlTraits().isIndexed[position];
    }
    return filter.text.empty() ? std::nullopt : std::optional(std::move(filter));
}

std::unique_ptr<BatchReader> LayerSource::scan(const std::vector<int>& attributes, std::int64_t batchRows,
                                               const std::string& filter) {
    auto scan = makeScan(attributes);
    scan.batchRows = batchRows;
    scan.filter = filter;
    return startScan(std::move(scan));
}

std::unique_ptr<BatchReader> LayerSource::lookUp(const std::vector<int>& attributes,
                                                 std::vector<std::int64_t> ids) {
    return startLookup(makeScan(attributes), std::move(ids));
}

std::unique_ptr<BatchReader> LayerSource::sample(const std::vector<int>& attributes, std::int64_t rows) {
    if (sqlTraits().evaluatesSql) {
        return sampleByRange(attributes, rows);
    }
    auto reader = sampleByNumber(attributes, rows);
    return reader ? std::move(reader) : RowSource::sample(attributes, rows);
}

std::unique_ptr<BatchReader> LayerSource::sampleByRange(const std::vector<int>& attributes,
                                                        std::int64_t rows) {
    const auto& identifier = sqlTraits().identifier;
    const auto inTable = std::max<std::int64_t>(1, rowCount().value_or(rows));
    auto scan = makeScan(attributes);
    const auto table = utils::sqlIdentifier(std::string_view(OGR_L_GetName(scan.layer)));
    const auto ids = occupiedIds(scan.lease.dataset(), table, identifier, inTable);
    constexpr double mostPerRow = 8; // where gaps are everywhere, fewer rows come
    auto runs =
        randomRuns(ids, rows, std::clamp(lengthOf(ids) / static_cast<double>(inTable), 1.0, mostPerRow));
    std::string ends;
    for (const auto& run : runs) {
        ends +=
            (ends.empty() ? "(" : ", (") + std::to_string(run.low) + ", " + std::to_string(run.high) + ")";
    }
    // Planning hundreds of ranges one by one would take longer than reading them.
    scan.filter = ends.empty() ? "0"
                               : identifier + " IN (SELECT t." + identifier + " FROM (VALUES " + ends +
                                     ") CROSS JOIN " + table + " AS t WHERE t." + identifier +
                                     " BETWEEN column1 AND column2)";
    return std::make_unique<RunReader>(startScan(std::move(scan)), std::move(runs));
}

/// Null where the format does not number its rows, or the numbers are not those that were expected.
std::unique_ptr<BatchReader> LayerSource::sampleByNumber(const std::vector<int>& attributes,
                                                         std::int64_t rows) {
    const auto count = rowCount();
    auto scan = makeScan(attributes);
    const QByteArray driver(GDALGetDriverShortName(GDALGetDatasetDriver(scan.lease.dataset())));
    const bool numbersRows = driver == "ESRI Shapefile" || driver == "FlatGeobuf" || driver == "MapInfo File";
    if (!numbersRows || !count || OGR_L_TestCapability(scan.layer, OLCRandomRead) == 0) {
        return nullptr;
    }
    auto runs = randomRuns({{0, *count - 1}}, rows, 1);
    std::vector<std::int64_t> ids;
    for (const auto& run : runs) {
        for (auto id = run.low; id <= run.high; ++id) {
            ids.push_back(id);
        }
    }
    return std::make_unique<RunReader>(startLookup(std::move(scan), std::move(ids)), std::move(runs));
}

void LayerSource::forget() {
    pool_->discardHandles();
    sqlTraits_.reset();
    placeIndex_.reset();
    rowCount_.reset();
}

const SqlTraits& LayerSource::sqlTraits() {
    if (!sqlTraits_) {
        const auto scan = makeScan();
        sqlTraits_ = sqlTraitsOf(scan.lease.dataset(), scan.layer, *schema_);
    }
    return *sqlTraits_;
}

LayerScan LayerSource::makeScan(const std::vector<int>& attributes) {
    LayerScan scan{pool_->acquire(), nullptr, nullptr, schema_, {}, {}, rowsPerBatch};
    scan.layer = findLayer(scan.lease.dataset(), layerIndex_, layerName_);
    if (!scan.layer || !hasFieldsOf(scan.layer, *schema_)) {
        throw std::runtime_error(tr("Слой «%1» изменил своё строение, откройте файл заново")
                                     .arg(QString::fromUtf8(layerName_))
                                     .toStdString());
    }
    for (const int attribute : attributes) {
        scan.columns.push_back(&schema_->columns[static_cast<std::size_t>(attribute)]);
    }
    return scan;
}

} // namespace orvane::files
