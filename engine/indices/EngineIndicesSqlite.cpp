#include <orvane/engine/EngineIndicesSqlite.h>

#include "engine/indices/IndexMatching.h"
#include "engine/indices/IndexSql.h"
#include "engine/indices/SqliteInserter.h"
#include "engine/indices/SqliteLoader.h"
#include "engine/indices/SqliteLookup.h"
#include "engine/indices/StorageDatabase.h"
#include "engine/indices/StorageFile.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/EngineIndicesSetup.h>
#include <orvane/engine/functions/Converters.h>

#include <QFile>

#include <algorithm>
#include <map>

namespace orvane::engine {

namespace {

constexpr quint32 allKnown =
    IndexStatistics::Rows | IndexStatistics::LargestGroup | IndexStatistics::SmallestGroup;

struct IndexEntry {
    IndexColumns columns;
    IndexStatistics statistics;
    SqliteLoader::GroupCounts groups; ///< by number of columns; empty when nothing is known
};

bool covers(const IndexColumns& columns, qint32 attribute) {
    return std::find(columns.begin(), columns.end(), attribute) != columns.end();
}

bool isPattern(quint8 operation) {
    return operation == EngineIndices::Like || operation == EngineIndices::Glob;
}

} // namespace

struct EngineIndicesSqlite::Internal {
    QString fileName;
    StorageOptions options;
    std::shared_ptr<dp::SqliteDatabaseAccess> database;
    std::shared_ptr<LookupStatements> lookups;
    std::shared_ptr<PatternRanges> patternRanges; ///< made when the first pattern comes
    std::map<int, IndexEntry> indices;
    qint32 lastIndexId = 0;
    unsigned long long quantity = 0;

    const IndexEntry* find(int index) const {
        const auto found = indices.find(index);
        return found == indices.end() ? nullptr : &found->second;
    }

    /// Most statements need none, and making it takes as long as looking a row up in a file.
    void requireOrder() {
        if (!options.order) {
            options.order = LocaleOrder::current();
        }
    }

    void closeStorage() {
        indices.clear();
        lookups.reset();
        database.reset();
        if (!fileName.isEmpty()) {
            QFile::remove(fileName);
            fileName.clear();
        }
    }

    void openStorage() {
        closeStorage();
        fileName = makeStorageFile();
        requireOrder();
        database = openStorageDatabase(fileName, options);
        lookups = std::make_shared<LookupStatements>(database);
    }

    /// Runs a statement as a unit of work of its own.
    void change(const QString& operation, const QString& sql) {
        if (!database) {
            return;
        }
        auto work = database->open(operation);
        database->exec(sql);
        work.close();
    }

    void resetStatistics(int index);
    /// The same after a load, with what the loader has counted if it could.
    void resetStatistics(int index, qint64 rows, SqliteLoader::GroupCounts groups);
    bool isOrderedByCollator(const dp::TableSchema& schema, int attribute) const;
    /// Whether a pattern on the attribute can be narrowed to a range of the index. The order of the column
    /// has to ignore letter case as the pattern does, or rows would be lost.
    bool isNarrowed(const dp::TableSchema& schema, const Column& column) const {
        const bool ignoresCase =
            column.operation == Like ? options.caseInsensitiveLike : options.caseInsensitiveGlob;
        return isPattern(column.operation) && ignoresCase &&
               isOrderedByCollator(schema, static_cast<int>(column.attribute));
    }
    PatternRanges& patterns() {
        if (!patternRanges) {
            requireOrder();
            patternRanges = std::make_shared<PatternRanges>(options.order);
        }
        return *patternRanges;
    }
};

void EngineIndicesSqlite::Internal::resetStatistics(int index) {
    const auto found = indices.find(index);
    if (found == indices.end() || found->second.columns.isEmpty()) {
        return;
    }
    QString columns;
    for (const qint32 column : found->second.columns) {
        columns += (columns.isEmpty() ? QString() : QStringLiteral(",")) + indexColumn(column);
    }
    dp::SqliteStatement query = database->query(
        QStringLiteral("Select Sum(n),Max(n),Min(n) From (Select Count(*) n From %1 Group By %2)")
            .arg(indexTable(index), columns));
    if (!query.next()) {
        return;
    }
    IndexStatistics& statistics = found->second.statistics;
    statistics.rows = query.integer(0);
    statistics.largestGroup = query.integer(1);
    statistics.smallestGroup = query.integer(2);
    statistics.known = allKnown;
    auto& groups = found->second.groups;
    groups.assign(static_cast<std::size_t>(found->second.columns.size()), {});
    groups.back() = {0, statistics.largestGroup, statistics.smallestGroup};
}

void EngineIndicesSqlite::Internal::resetStatistics(int index, qint64 rows,
                                                    SqliteLoader::GroupCounts groups) {
    const auto found = indices.find(index);
    if (found == indices.end() || groups.empty()) {
        resetStatistics(index);
        return;
    }
    found->second.statistics = {allKnown, rows, groups.back().largest, groups.back().smallest};
    found->second.groups = std::move(groups);
}

bool EngineIndicesSqlite::Internal::isOrderedByCollator(const dp::TableSchema& schema, int attribute) const {
    return !options.collate.isEmpty() && attribute >= 0 && attribute < schema.numAttributes() &&
           schema.at(attribute)->type() == QMetaType::QString;
}

EngineIndicesSqlite::EngineIndicesSqlite(const EngineIndicesSetup& setup, EngineCache& cache)
    : EngineIndices(setup, cache), internal_(std::make_unique<Internal>()) {
    internal_->options.caseInsensitiveGlob = setup.value("UseCaseInsensitiveGlob", false).toBool();
    internal_->options.caseInsensitiveLike = setup.value("UseCaseInsensitiveLike", false).toBool();
    internal_->options.collate = setup.value("Collate", QString()).toString();
}

EngineIndicesSqlite::~EngineIndicesSqlite() {
    internal_->closeStorage();
}

void EngineIndicesSqlite::createStorageImpl(const dp::TableSchema& schema) {
    internal_->openStorage();
    setSchema(std::make_unique<dp::TableSchema>(schema.attributes()));
}

void EngineIndicesSqlite::dropStorage() {
    internal_->closeStorage();
    setSchema(nullptr);
}

bool EngineIndicesSqlite::isCorrect() const {
    return internal_->database && schema() && schema()->numAttributes() > 0;
}

int EngineIndicesSqlite::findIndexImpl(const std::vector<Column>& columns, Conformance& conformance) const {
    const std::vector<Column> normalized = normalizedColumns(columns, schema()->numAttributes());
    conformance = {};
    int best = -1;
    for (const auto& [index, entry] : internal_->indices) {
        const Conformance match = matchIndex(entry.columns, normalized);
        if (match.score > conformance.score) {
            conformance = match;
            best = index;
        }
    }
    return best;
}

int EngineIndicesSqlite::addIndexImpl(const std::vector<Column>& columns) {
    Conformance conformance;
    const int existing = findIndexImpl(columns, conformance);
    if (conformance.score >= 1.0) {
        return existing;
    }
    const std::vector<Column> normalized = normalizedColumns(columns, schema()->numAttributes());
    const int index = ++internal_->lastIndexId;
    const QString sql = createIndexSql(indexTable(index), normalized, *schema(), internal_->options.collate);
    if (!internal_->database || sql.isEmpty()) {
        return -1;
    }
    internal_->change(QStringLiteral("addIndex"), sql);
    IndexEntry& entry = internal_->indices[index];
    for (const Column& column : normalized) {
        entry.columns.append(static_cast<qint32>(column.attribute));
    }
    return index;
}

void EngineIndicesSqlite::dropIndex(int index) {
    if (internal_->lookups) {
        internal_->lookups->clear();
    }
    internal_->change(QStringLiteral("dropIndex"),
                      QStringLiteral("Drop Table If Exists %0;").arg(indexTable(index)));
    internal_->indices.erase(index);
}

void EngineIndicesSqlite::clearIndex(int index) {
    internal_->change(QStringLiteral("clearIndex"), QStringLiteral("Delete From %0;").arg(indexTable(index)));
}

std::unique_ptr<EngineIndices::InserterInterface> EngineIndicesSqlite::getInserter(int index) {
    const IndexEntry* entry = internal_->find(index);
    return std::make_unique<SqliteInserter>(index, entry ? entry->columns : IndexColumns(), cache());
}

void EngineIndicesSqlite::flushInserter(std::unique_ptr<InserterInterface> inserter) {
    if (!inserter || !internal_->database) {
        return;
    }
    internal_->change(QStringLiteral("addRows"), inserter->sql());
    internal_->resetStatistics(inserter->indexId());
}

EngineIndices::FeatureIds EngineIndicesSqlite::findRows(int index,
                                                        const std::vector<Constant>& constants) const {
    FeatureIds ids(
        [](const dp::FeatureId& a, const dp::FeatureId& b) { return variantCompare(a.value(), b.value()); });
    const IndexEntry* entry = internal_->find(index);
    std::vector<Column> columns;
    std::vector<dp::Cell> operands;
    std::vector<std::string> texts(constants.size());
    for (const Constant& constant : constants) {
        if (entry && covers(entry->columns, constant.attribute)) {
            const quint8 operation = constant.value.isNull() ? quint8(Is) : constant.operation;
            columns.push_back({static_cast<quint32>(constant.attribute), operation});
            operands.push_back(operandOf(constant.value, texts[operands.size()]));
        }
    }
    const auto lookup = columns.empty() ? nullptr : getLookup(index, columns, RowOrder::Any);
    if (lookup) {
        lookup->start(operands);
        for (qint64 row = 0; lookup->next(row);) {
            ids.insert(cache().intToId(row));
        }
    }
    return ids;
}

const IndexStatistics& EngineIndicesSqlite::statistics(int index) const {
    static const IndexStatistics unknown;
    const IndexEntry* entry = internal_->find(index);
    return isCorrect() && entry ? entry->statistics : unknown;
}

unsigned long long EngineIndicesSqlite::quantity() const {
    if (!isCorrect()) {
        return 0;
    }
    if (internal_->quantity != 0) {
        return internal_->quantity;
    }
    for (const auto& [index, entry] : internal_->indices) {
        if (entry.statistics.rows != 0) {
            return static_cast<unsigned long long>(entry.statistics.rows);
        }
    }
    return 0;
}

void EngineIndicesSqlite::setQuantity(unsigned long long quantity) {
    internal_->quantity = quantity;
}

unsigned long long EngineIndicesSqlite::estimateRows(int index, const std::vector<Column>& columns) const {
    const IndexEntry* entry = internal_->find(index);
    if (!isCorrect() || !entry) {
        return 0;
    }
    const std::vector<Column> normalized = normalizedColumns(columns, schema()->numAttributes());
    if (normalized.empty()) {
        return 0;
    }
    // Fields that are not known are 0, which is what they count for.
    const IndexStatistics& statistics = entry->statistics;
    const quint8 first = normalized.front().operation;
    qint64 estimate = statistics.rows / 2;
    if (first == NotEqual || first == IsNot) {
        estimate = statistics.rows - statistics.smallestGroup;
    } else if (isEquality(normalized.back().operation)) {
        estimate = statistics.largestGroup;
    }
    return static_cast<unsigned long long>(estimate);
}

void EngineIndicesSqlite::enumColumns(int index, const std::function<Status(int)>& callback) const {
    const IndexEntry* entry = internal_->find(index);
    if (!isCorrect() || !entry) {
        return;
    }
    for (const qint32 column : entry->columns) {
        if (callback(column) == Status::Stop) {
            return;
        }
    }
}

std::unique_ptr<EngineIndices::RowLoader> EngineIndicesSqlite::getLoader(int index,
                                                                         work::Progress* progress) {
    const IndexEntry* entry = internal_->find(index);
    if (!isCorrect() || !entry || entry->columns.isEmpty()) {
        return nullptr;
    }
    std::vector<engine::RowOrder::Key> keys;
    for (const qint32 column : entry->columns) {
        keys.push_back({internal_->isOrderedByCollator(*schema(), column) ? dp::TextCollation::Locale
                                                                          : dp::TextCollation::Binary});
    }
    return std::make_unique<SqliteLoader>(
        internal_->database, index, entry->columns, std::move(keys), internal_->options.order,
        [this, index](qint64 rows, SqliteLoader::GroupCounts groups) {
            internal_->resetStatistics(index, rows, std::move(groups));
        },
        progress);
}

std::unique_ptr<EngineIndices::RowLookup>
EngineIndicesSqlite::getLookup(int index, std::span<const Column> columns, RowOrder order) const {
    const IndexEntry* entry = internal_->find(index);
    if (!isCorrect() || !entry) {
        return nullptr;
    }
    SqliteLookup::Search search;
    search.index = index;
    if (order != RowOrder::Any) {
        search.orderColumns.assign(entry->columns.begin(), entry->columns.end());
        search.isDescending = order == RowOrder::Descending;
    }
    for (const Column& column : columns) {
        if (!covers(entry->columns, static_cast<qint32>(column.attribute)) ||
            operatorText(column.operation).isEmpty()) {
            return nullptr;
        }
        search.terms.push_back({column, internal_->isNarrowed(*schema(), column)});
    }
    const bool hasPattern = std::any_of(search.terms.begin(), search.terms.end(),
                                        [](const auto& term) { return term.isNarrowed; });
    if (hasPattern) {
        internal_->patterns();
    }
    return std::make_unique<SqliteLookup>(internal_->lookups, std::move(search), internal_->patternRanges);
}

EngineIndices::Groups EngineIndicesSqlite::groups(int index, int columns) const {
    const IndexEntry* entry = internal_->find(index);
    const bool isKnown =
        isCorrect() && entry && columns > 0 && static_cast<std::size_t>(columns) <= entry->groups.size();
    return isKnown ? entry->groups[static_cast<std::size_t>(columns) - 1] : Groups();
}

bool EngineIndicesSqlite::narrows(quint8 operation, std::string_view pattern) const {
    const StorageOptions& options = internal_->options;
    const bool ignoresCase = operation == Like ? options.caseInsensitiveLike : options.caseInsensitiveGlob;
    return ignoresCase && !options.collate.isEmpty() &&
           !internal_->patterns().find(pattern, operation).upper.empty();
}

unsigned long long EngineIndicesSqlite::countRows(int index, const Column& column, const dp::Cell& operand,
                                                  unsigned long long most) const {
    std::vector<Column> terms{column};
    std::vector<dp::Cell> operands{operand};
    PatternRange range;
    if (isCorrect() && operand.type() == dp::CellType::Text && internal_->isNarrowed(*schema(), column)) {
        range = internal_->patterns().find(operand.view(), column.operation);
        terms = {{column.attribute, GreaterOrEqual}};
        operands = {dp::Cell::ofText(range.lower)};
        if (!range.upper.empty()) {
            terms.push_back({column.attribute, Less});
            operands.push_back(dp::Cell::ofText(range.upper));
        }
    }
    const auto lookup = getLookup(index, terms, RowOrder::Any);
    unsigned long long count = 0;
    if (lookup) {
        lookup->start(operands);
        for (qint64 row = 0; count < most && lookup->next(row);) {
            ++count;
        }
    }
    return count;
}

} // namespace orvane::engine
