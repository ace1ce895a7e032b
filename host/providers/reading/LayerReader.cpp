#include "host/providers/reading/LayerReader.h"

#include "host/providers/conditions/RowFilter.h"
#include "host/providers/reading/BatchCursor.h"
#include "host/providers/reading/CountingCursor.h"
#include "host/providers/reading/ReadAhead.h"
#include "host/providers/reading/SampleReader.h"
#include "platform/work/Cancellation.h"

#include <algorithm>
#include <numeric>
#include <thread>

namespace orvane::files {

namespace {

/// Up to this size of the file, the first scan reads all columns: every later one is answered from memory.
constexpr std::uint64_t smallFile = std::uint64_t{4} << 20;
/// Up to this many rows, testing the boxes in memory is faster than asking the file's spatial index.
constexpr std::int64_t mostBoxRows = 200'000;
/// Up to this many rows found in memory, the other columns are read feature by feature.
constexpr std::size_t mostLookups = 4096;
/// Reading one of the rows that a tree of the file finds, in the order of the file, likewise.
constexpr std::int64_t rowsPerFoundRow = 3;
/// Finding a feature by its identifier costs as much as scanning about so many rows.
constexpr std::int64_t rowsPerLookup = 64;

/// The identifiers among the values, each once, in ascending order, which is the fastest to read.
std::vector<std::int64_t> sortedIds(const std::vector<dp::FeatureId>& ids) {
    std::vector<std::int64_t> sorted;
    sorted.reserve(ids.size());
    for (const auto& id : ids) {
        bool isNumber = false;
        const auto value = id.value().toLongLong(&isNumber);
        if (isNumber) {
            sorted.push_back(value);
        }
    }
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    return sorted;
}

/// Appends an attribute unless it is there; its position.
int addDistinct(std::vector<int>& attributes, int attribute) {
    const auto found = std::find(attributes.begin(), attributes.end(), attribute);
    if (found == attributes.end()) {
        attributes.push_back(attribute);
        return static_cast<int>(attributes.size()) - 1;
    }
    return static_cast<int>(found - attributes.begin());
}

} // namespace

/// A request as the table can use it.
struct LayerReader::Query {
    std::vector<int> requested; ///< attributes, each once
    std::vector<int> needed;    ///< the same, then those that only the tests need
    std::vector<RowSource::Test> tests;
    std::optional<geometry::Envelope> window;
    std::int64_t limit = -1;

    std::vector<int> testedAttributes() const {
        std::vector<int> attributes;
        for (const auto& test : tests) {
            addDistinct(attributes, test.attribute);
        }
        return attributes;
    }
    /// The tests on the first `columns` attributes of `needed`.
    RowFilter filter(std::size_t columns) const {
        RowFilter result;
        for (const auto& test : tests) {
            const auto found = std::find(needed.begin(), needed.end(), test.attribute);
            if (static_cast<std::size_t>(found - needed.begin()) < columns) {
                result.add(static_cast<int>(found - needed.begin()), test.condition);
            }
        }
        return result;
    }
};

LayerReader::LayerReader(std::shared_ptr<RowSource> source)
    : source_(std::move(source)), geometry_(source_->schema()->geometryIndex()),
      stamp_(source_->firstStamp()),
      key_(std::make_shared<std::atomic<BatchCache::TableKey>>(BatchCache::newKey())) {}

LayerReader::~LayerReader() {
    BatchCache::instance().drop(key_->exchange(0));
}

std::unique_ptr<dp::Cursor> LayerReader::openCursor(const dp::ScanRequest& request) {
    followFile();
    if (auto cursor = openForCounting(request)) {
        return cursor;
    }
    loadWholeOnce();

    Query query;
    query.requested.reserve(request.attributes.size());
    for (const int attribute : request.attributes) {
        addDistinct(query.requested, attribute);
    }
    query.needed = query.requested;
    for (const auto& term : request.terms) {
        dp::Condition condition(term);
        if (condition.isNullTest() || usesTerm(term.attribute, term.comparison, term.collation)) {
            addDistinct(query.needed, term.attribute);
            query.tests.push_back({term.attribute, std::move(condition)});
        }
    }
    query.window = request.window;
    query.limit = request.limit;

    if (request.ids) {
        return openById(query, sortedIds(*request.ids));
    }
    if (auto cursor = openFromCache(query)) {
        return cursor;
    }
    if (auto cursor = openByTree(query)) {
        return cursor;
    }
    if (auto cursor = openByDriver(query)) {
        return cursor;
    }
    return openFullScan(query);
}

std::unique_ptr<dp::Cursor> LayerReader::openForCounting(const dp::ScanRequest& request) {
    if (!request.attributes.empty() || !request.terms.empty() || request.window || request.ids) {
        return nullptr;
    }
    const auto rows = featureCount();
    const bool isExact = BatchCache::instance().rowCount(*key_) || source_->countsExactly();
    return rows && isExact ? std::make_unique<CountingCursor>(*rows, source_) : nullptr;
}

std::unique_ptr<dp::SampleCursor> LayerReader::makeCursor(const Query& query,
                                                          std::unique_ptr<BatchReader> reader,
                                                          std::shared_ptr<const RowFilter> filter,
                                                          bool isLookedUp) {
    std::vector<int> slots(static_cast<std::size_t>(source_->schema()->numAttributes()), -1);
    for (std::size_t i = 0; i < query.requested.size(); ++i) {
        slots[static_cast<std::size_t>(query.requested[i])] = static_cast<int>(i);
    }
    return std::make_unique<BatchCursor>(std::move(reader), std::move(slots), std::move(filter), isLookedUp);
}

std::unique_ptr<dp::SampleCursor> LayerReader::openSample(const std::vector<int>& attributes,
                                                          std::int64_t rows) {
    followFile();
    loadWholeOnce();
    Query query;
    for (const int attribute : attributes) {
        addDistinct(query.requested, attribute);
    }
    std::unique_ptr<BatchReader> reader;
    if (auto cached = BatchCache::instance().find(*key_, query.requested)) {
        reader = std::make_unique<RandomRowReader>(std::move(*cached), rows);
    } else if (const auto count = featureCount(); count && *count <= rows) {
        reader = startCollectedScan(query.requested);
    } else {
        reader = source_->sample(query.requested, rows);
    }
    return makeCursor(query, std::move(reader), nullptr);
}

std::unique_ptr<dp::Cursor> LayerReader::openById(const Query& query, std::vector<std::int64_t> ids) {
    auto& cache = BatchCache::instance();
    auto cached = cache.find(*key_, query.requested);
    if (!cached && lookupsCostMoreThanAScan(ids.size())) {
        load(query.requested);
        cached = cache.find(*key_, query.requested);
    }
    if (!cached || !cached->rows->idsAscend) {
        return makeCursor(query, source_->lookUp(query.requested, std::move(ids)), nullptr);
    }
    RowFilter filter;
    filter.setIds(std::move(ids));
    const auto shared = std::make_shared<const RowFilter>(std::move(filter));
    return makeCursor(query, std::make_unique<CachedReader>(std::move(*cached), shared, nullptr), shared);
}

bool LayerReader::lookupsCostMoreThanAScan(std::size_t count) {
    lookups_ += static_cast<std::int64_t>(count);
    const auto rows = featureCount();
    if (source_->findsRows() && (!rows || lookups_ < *rows / rowsPerLookup)) {
        return false;
    }
    lookups_ = 0;
    return true;
}

std::unique_ptr<dp::Cursor> LayerReader::openFromCache(const Query& query) {
    auto attributes = query.needed;
    const bool testsBoxes = query.window && usesWindow();
    int geometry = -1;
    if (testsBoxes) {
        geometry = addDistinct(attributes, geometry_);
    }
    auto cached = BatchCache::instance().find(*key_, attributes);
    if (!cached || (testsBoxes && cached->rows->rows > mostBoxRows)) {
        return nullptr;
    }

    auto filter = query.filter(query.needed.size());
    std::shared_ptr<const CachedScan> boxes;
    if (testsBoxes) {
        filter.setWindow(*query.window);
        boxes = cached->columns[static_cast<std::size_t>(geometry)].scan;
    }
    const auto shared = filter.isEmpty() ? nullptr : std::make_shared<const RowFilter>(std::move(filter));
    return makeCursor(query, std::make_unique<CachedReader>(std::move(*cached), shared, std::move(boxes)),
                      shared);
}

std::unique_ptr<dp::Cursor> LayerReader::openByTree(const Query& query) {
    const auto rows = query.window ? featureCount() : std::nullopt;
    auto ids = rows ? source_->rowsIn(*query.window, static_cast<std::size_t>(*rows / rowsPerFoundRow))
                    : std::nullopt;
    if (!ids) {
        return nullptr;
    }
    auto filter = query.filter(query.needed.size());
    const auto shared = filter.isEmpty() ? nullptr : std::make_shared<const RowFilter>(std::move(filter));
    return makeCursor(query, source_->lookUp(query.needed, std::move(*ids)), shared, true);
}

std::unique_ptr<dp::Cursor> LayerReader::openByDriver(const Query& query) {
    auto sql = source_->filterOf(query.tests, query.window);
    if (!sql) {
        return nullptr;
    }
    if (!sql->usesIndex) {
        // SQLite would look at every row. Where the columns are narrow, reading them whole costs the same and
        // answers the next query from memory.
        if (isNarrow(query.needed)) {
            return nullptr;
        }
        if (++driverFilters_ > 1 && loadTestedColumns(query)) {
            return openByTestedColumns(query);
        }
    }
    auto filter = query.filter(query.requested.size());
    const auto shared = filter.isEmpty() ? nullptr : std::make_shared<const RowFilter>(std::move(filter));
    return makeCursor(query, source_->scan(query.requested, rowsPerBatch, sql->text), shared, sql->usesIndex);
}

bool LayerReader::loadTestedColumns(const Query& query) {
    const auto tested = query.testedAttributes();
    auto& cache = BatchCache::instance();
    if (!cache.find(*key_, tested)) {
        load(tested);
    }
    return cache.find(*key_, tested).has_value();
}

std::unique_ptr<dp::Cursor> LayerReader::openByTestedColumns(const Query& query) {
    auto columns = BatchCache::instance().find(*key_, query.testedAttributes());
    if (!columns) {
        return openFullScan(query);
    }
    RowFilter filter;
    std::vector<int> tested;
    for (const auto& test : query.tests) {
        filter.add(addDistinct(tested, test.attribute), test.condition);
    }
    std::vector<std::int64_t> ids;
    std::vector<std::int32_t> rows;
    CachedReader reader(std::move(*columns), nullptr, nullptr);
    for (ColumnBatch batch; reader.next(batch);) {
        filter.select(batch, rows);
        if (ids.size() + rows.size() > mostLookups) {
            return openFullScan(query);
        }
        for (const auto row : rows) {
            ids.push_back(batch.fids.number<std::int64_t>(row));
        }
    }
    std::sort(ids.begin(), ids.end());
    return makeCursor(query, source_->lookUp(query.requested, std::move(ids)), nullptr);
}

std::unique_ptr<dp::Cursor> LayerReader::openFullScan(const Query& query) {
    auto filter = query.filter(query.needed.size());
    const auto shared = filter.isEmpty() ? nullptr : std::make_shared<const RowFilter>(std::move(filter));
    if (query.limit < 0) {
        return makeCursor(query, startCollectedScan(query.needed), shared);
    }
    const auto batchRows = std::clamp<std::int64_t>(query.limit, 1, rowsPerBatch);
    return makeCursor(query, source_->scan(query.needed, batchRows), shared);
}

std::optional<std::int64_t> LayerReader::featureCount() {
    followFile();
    if (const auto rows = BatchCache::instance().rowCount(*key_)) {
        return rows;
    }
    return source_->rowCount();
}

BatchCache::TableKey LayerReader::revision() {
    followFile();
    return *key_;
}

bool LayerReader::usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    using dp::Comparison;
    switch (comparison) {
    case Comparison::Like:
    case Comparison::Glob: return false;
    case Comparison::IsNull:
    case Comparison::IsNotNull: return true;
    default: break;
    }
    switch (source_->valueClass(attribute)) {
    case ValueClass::Integer:
    case ValueClass::Real: return true;
    case ValueClass::Text: return collation == dp::TextCollation::Binary;
    case ValueClass::Other: return comparison == Comparison::Is || comparison == Comparison::IsNot;
    }
    return false;
}

bool LayerReader::looksUp(int attribute, dp::Comparison comparison, dp::TextCollation collation) {
    using dp::Comparison;
    switch (comparison) {
    case Comparison::Equal:
    case Comparison::Is:
    case Comparison::In:
    case Comparison::Less:
    case Comparison::LessOrEqual:
    case Comparison::Greater:
    case Comparison::GreaterOrEqual:
        followFile();
        return usesTerm(attribute, comparison, collation) && source_->isIndexed(attribute);
    default: return false;
    }
}

void LayerReader::invalidate() {
    BatchCache::instance().drop(key_->exchange(BatchCache::newKey()));
    source_->forget();
    stamp_.refresh();
    wholeWasTried_ = false;
    driverFilters_ = 0;
    lookups_ = 0;
}

bool LayerReader::isBehindFile() {
    const bool isBehind = stamp_.hasChangedByNow();
    if (isBehind) {
        invalidate();
    }
    return isBehind;
}

void LayerReader::followFile() {
    if (stamp_.hasChanged()) {
        invalidate();
    }
}

bool LayerReader::isNarrow(const std::vector<int>& attributes) const {
    return std::all_of(attributes.begin(), attributes.end(), [this](int attribute) {
        const auto kind = source_->valueClass(attribute);
        return kind == ValueClass::Integer || kind == ValueClass::Real;
    });
}

std::unique_ptr<BatchReader> LayerReader::startCollectedScan(const std::vector<int>& attributes) {
    const auto geometry = std::find(attributes.begin(), attributes.end(), geometry_);
    auto scan = std::make_shared<CachedScan>(
        attributes, geometry == attributes.end() ? -1 : static_cast<int>(geometry - attributes.begin()));
    auto reader = source_->scan(attributes);
    if (!source_->isEdited() && std::thread::hardware_concurrency() > 1) {
        reader = std::make_unique<ReadAhead>(std::move(reader));
    }
    return std::make_unique<ScanCollector>(std::move(reader), *key_, key_, std::move(scan));
}

void LayerReader::load(const std::vector<int>& attributes) {
    const auto reader = startCollectedScan(attributes);
    const work::Cancellation cancellation;
    for (ColumnBatch batch; !cancellation.isRequested() && reader->next(batch);) {
    }
}

void LayerReader::loadWholeOnce() {
    if (wholeWasTried_) {
        return;
    }
    wholeWasTried_ = true;
    if (stamp_.size() == 0 || stamp_.size() > smallFile) {
        return;
    }
    std::vector<int> all(static_cast<std::size_t>(source_->schema()->numAttributes()));
    std::iota(all.begin(), all.end(), 0);
    try {
        load(all);
    } catch (const std::runtime_error&) {
        // A column that cannot be read must not stand in the way of queries that do not need it.
    }
}

} // namespace orvane::files
