#include "host/adaptor/indices/AttributeIndexing.h"

#include "host/adaptor/indices/Costs.h"
#include "host/adaptor/indices/IndexBuilder.h"
#include "host/adaptor/indices/IndexOrderCursor.h"
#include "platform/dp/ValueOrder.h"

#include <orvane/engine/EngineCache.h>

#include <QElapsedTimer>
#include <QMetaType>

#include <algorithm>

namespace orvane::adaptor {

namespace {

using dp::Comparison;
using engine::EngineIndices;
using Kind = TableDeclaration::Kind;

/// Below this a scan is as fast as a look-up.
constexpr std::int64_t fewestRows = 1000;
/// A look-up that finds so many rows that a scan is faster gives way to it, and is not tried again when that
/// has happened so much more often than not.
constexpr int mostFailures = 3;
constexpr std::size_t mostAttributes = 3;
constexpr std::size_t mostLookups = 10'000; ///< combinations of In lists

bool isEquality(Comparison comparison) {
    return comparison == Comparison::Equal || comparison == Comparison::Is || comparison == Comparison::In;
}

bool isRange(Comparison comparison) {
    return comparison == Comparison::Greater || comparison == Comparison::GreaterOrEqual ||
           comparison == Comparison::Less || comparison == Comparison::LessOrEqual;
}

std::uint8_t operationOf(Comparison comparison) {
    return comparison == Comparison::In ? static_cast<std::uint8_t>(Comparison::Equal)
                                        : static_cast<std::uint8_t>(comparison);
}

/// An index compares numbers as numbers and texts under the collation of the column: Locale, or byte by byte
/// where they are dates and times. Whatever is compared otherwise it would answer wrongly.
bool comparesAlike(const TableDeclaration::Column& column, dp::TextCollation collation) {
    return column.kind == Kind::Number || (column.kind == Kind::Text && collation == column.collation);
}

} // namespace

const TableDeclaration::Column& AttributeIndexing::column(int attribute) const {
    const auto& columns = declaration_.columns();
    return *std::find_if(columns.begin(), columns.end(), [attribute](const TableDeclaration::Column& each) {
        return each.attribute == attribute;
    });
}

/// The terms that cost least are checked first: few rows come to the others.
double AttributeIndexing::scanCost(const Terms& terms, double rows) const {
    double perRow = cost::patternTest;
    for (const dp::ScanTerm* term : terms) {
        if (!isPattern(term->comparison)) {
            const bool isNumber = column(term->attribute).kind == Kind::Number;
            perRow = std::min(perRow, isNumber ? cost::numberTest : cost::textTest);
        }
    }
    return cost::opening + rows * perRow;
}

/// What an index would save, which is little where the source has one of its own.
double AttributeIndexing::savedCost(const Terms& terms, double scanning) const {
    const bool isLookedUp = std::any_of(terms.begin(), terms.end(), [this](const dp::ScanTerm* term) {
        return table_->looksUp(term->attribute, term->comparison, term->collation);
    });
    return isLookedUp ? std::min(scanning, cost::sourceLookup) : scanning;
}

double AttributeIndexing::buildCost(const Attributes& attributes, double rows) const {
    double perRow = 0;
    for (const int attribute : attributes) {
        perRow += column(attribute).kind == Kind::Number ? cost::indexedNumber : cost::indexedText;
    }
    return cost::storage + rows * perRow;
}

bool AttributeIndexing::serves(const TableDeclaration::Column& column, dp::TextCollation collation,
                               double rows) {
    return rows >= static_cast<double>(fewestRows) && comparesAlike(column, collation);
}

IndexUse::Outcome AttributeIndexing::judge(const TableDeclaration::Column& column, Comparison comparison,
                                           dp::TextCollation collation) {
    if (isPattern(comparison)) { // matched as the store does, whatever the collation of the statement
        return column.isLocaleText() ? IndexUse::Outcome::Used : IndexUse::Outcome::Comparison;
    }
    if (!isEquality(comparison) && !isRange(comparison)) {
        return IndexUse::Outcome::Comparison;
    }
    if (column.kind != Kind::Number && column.kind != Kind::Text) {
        return IndexUse::Outcome::ColumnType;
    }
    return comparesAlike(column, collation) ? IndexUse::Outcome::Used : IndexUse::Outcome::Collation;
}

bool AttributeIndexing::isServed(const dp::ScanTerm& term, const EngineIndices& store) const {
    const TableDeclaration::Column& asked = column(term.attribute);
    if (judge(asked, term.comparison, term.collation) != IndexUse::Outcome::Used) {
        return false;
    }
    if (isPattern(term.comparison)) {
        const auto* pattern = std::get_if<std::string>(&term.operands.front());
        return pattern && store.narrows(operationOf(term.comparison), *pattern);
    }
    return std::all_of(term.operands.begin(), term.operands.end(), [&asked](const dp::ScanValue& operand) {
        return asked.comparesAsIs(dp::cellOf(operand).type());
    });
}

bool AttributeIndexing::findsAboutOne(const dp::ScanTerm& term, double rows) const {
    const ColumnStatistics* const values = values_.find(term.attribute);
    constexpr double about = 2;
    return values && rows * values->shareOfOneValue() < about;
}

/// The equalities, or else the patterns or ranges of one attribute: patterns first, which cost SQLite most.
/// An equality that finds about one row by itself needs no others: so one index on a key serves them all.
AttributeIndexing::Terms AttributeIndexing::chooseTerms(std::span<const dp::ScanTerm> terms,
                                                        const EngineIndices& store, double rows) const {
    Terms equalities;
    Terms patterns;
    Terms ranges;
    std::size_t combinations = 1;
    for (const dp::ScanTerm& term : terms) {
        if (!isServed(term, store)) {
            continue;
        }
        const auto sameAttribute = [&term](const dp::ScanTerm* other) {
            return other->attribute == term.attribute;
        };
        if (isRange(term.comparison) || isPattern(term.comparison)) {
            Terms& bounds = isPattern(term.comparison) ? patterns : ranges;
            if (bounds.empty() || sameAttribute(bounds.front())) {
                bounds.push_back(&term);
            }
        } else if (equalities.size() < mostAttributes &&
                   std::none_of(equalities.begin(), equalities.end(), sameAttribute) &&
                   term.operands.size() <= mostLookups / combinations) {
            combinations *= std::max<std::size_t>(term.operands.size(), 1);
            equalities.push_back(&term);
        }
    }
    if (const auto key = std::find_if(equalities.begin(), equalities.end(),
                                      [&](const dp::ScanTerm* term) { return findsAboutOne(*term, rows); });
        key != equalities.end()) {
        equalities = {*key};
    }
    Terms& chosen = !equalities.empty() ? equalities : !patterns.empty() ? patterns : ranges;
    std::sort(chosen.begin(), chosen.end(),
              [](const auto* a, const auto* b) { return a->attribute < b->attribute; });
    return chosen;
}

bool AttributeIndexing::narrows(Comparison comparison, std::string_view pattern) const {
    const EngineIndices* indices = store();
    return indices && indices->narrows(operationOf(comparison), pattern);
}

void AttributeIndexing::follow(EngineIndices& store) {
    const std::uint64_t revision = table_->revision();
    if (known_ != &store || revision_ != revision) { // the store may have been another table's
        forget();
        store.dropStorage();
        revision_ = revision;
        known_ = &store;
    }
}

void AttributeIndexing::drop() {
    // Where there are none yet, a store would be made only to be emptied, at the end of the process after
    // what it needs.
    if (EngineIndices* indices = known_ ? store() : nullptr) {
        indices->dropStorage();
    }
    forget();
}

void AttributeIndexing::forget() {
    searches_.clear();
    spent_.clear();
    known_ = nullptr;
}

std::optional<std::vector<dp::FeatureId>> AttributeIndexing::find(std::span<const dp::ScanTerm> terms,
                                                                  const work::Cancellation& cancellation) {
    using Outcome = IndexUse::Outcome;
    EngineIndices* indices = terms.empty() ? nullptr : store();
    if (!indices) {
        return std::nullopt;
    }
    use_ = {};
    const auto rows = table_->featureCount();
    const Terms chosen = chooseTerms(terms, *indices, static_cast<double>(rows.value_or(0)));
    if (chosen.empty()) {
        const bool hasPattern = std::any_of(
            terms.begin(), terms.end(), [](const dp::ScanTerm& term) { return isPattern(term.comparison); });
        use_.outcome = hasPattern ? Outcome::Pattern : Outcome::Operand;
        return std::nullopt;
    }
    if (!rows || *rows < fewestRows) {
        use_.outcome = rows ? Outcome::SmallTable : Outcome::UnknownSize;
        return std::nullopt;
    }
    follow(*indices);
    Conditions conditions;
    for (const dp::ScanTerm* term : chosen) {
        conditions.emplace_back(term->attribute, operationOf(term->comparison));
    }
    Search& search = searches_[conditions];
    if (search.attributes.empty()) {
        for (const auto& [attribute, operation] : conditions) {
            if (search.attributes.empty() || search.attributes.back() != attribute) {
                search.attributes.push_back(attribute);
            }
        }
    }
    use_.attributes = &search.attributes;
    const double scanning = scanCost(chosen, static_cast<double>(*rows));
    if (!prepare(search, conditions, savedCost(chosen, scanning), *indices, cancellation)) {
        return std::nullopt;
    }
    use_.outcome = Outcome::FindsMuch;
    std::vector<qint64> found;
    if (search.failures >= mostFailures) {
        return std::nullopt;
    }
    if (!collect(*search.rows, chosen, static_cast<std::size_t>(scanning / cost::foundRow), found)) {
        ++search.failures;
        return std::nullopt;
    }
    --search.failures;
    use_.outcome = Outcome::Used;
    std::vector<dp::FeatureId> ids;
    ids.reserve(found.size());
    for (const qint64 row : found) {
        ids.push_back(cache_.intToId(row));
    }
    return ids;
}

bool AttributeIndexing::prepare(Search& search, const Conditions& conditions, double savedCost,
                                EngineIndices& store, const work::Cancellation& cancellation) {
    if (search.rows && store.statistics(search.index).known != 0) {
        return true; // no other index ever gets its number
    }
    search.index = findIndex(search.attributes, store);
    if (search.index < 0) {
        search.index = make(search.attributes, savedCost, store, cancellation);
    }
    std::vector<EngineIndices::Column> columns;
    for (const auto& [attribute, operation] : conditions) {
        columns.push_back({static_cast<quint32>(attribute), operation});
    }
    search.rows = store.getLookup(search.index, columns);
    return search.rows != nullptr;
}

int AttributeIndexing::make(const Attributes& attributes, double savedCost, EngineIndices& store,
                            const work::Cancellation& cancellation) {
    double& spent = spent_[attributes];
    spent += savedCost;
    use_.scanCost = spent;
    use_.makingCost = buildCost(attributes, static_cast<double>(table_->featureCount().value_or(0)));
    if (use_.scanCost < use_.makingCost) {
        use_.outcome = IndexUse::Outcome::ScansCheaper;
        return -1;
    }
    cancellation.check();
    spent = 0; // tried again, where it cannot be made, when as much has been spent once more
    QElapsedTimer timer;
    timer.start();
    const int index = buildIndex(attributes, *table_, store, cache_);
    use_.isMade = index >= 0;
    if (use_.isMade) {
        use_.makingCost = static_cast<double>(timer.nsecsElapsed());
    } else {
        use_.outcome = IndexUse::Outcome::NoStorage;
    }
    return index;
}

std::unique_ptr<dp::Cursor> AttributeIndexing::openInOrder(const std::vector<int>& attributes,
                                                           std::vector<ArrangedRows::Key> keys,
                                                           const work::Cancellation& cancellation) {
    const int attribute = keys.front().attribute;
    if (!hasOrder(attribute)) {
        return nullptr;
    }
    using Order = EngineIndices::RowOrder;
    use_ = {};
    use_.attributes = &spent_.try_emplace({attribute}).first->first;
    use_.outcome = IndexUse::Outcome::Used;
    auto rows = store()->getLookup(indexOn(attribute), {},
                                   keys.front().isDescending ? Order::Descending : Order::Ascending);
    return std::make_unique<IndexOrderCursor>(table_, cache_, std::move(rows), attributes, std::move(keys),
                                              cancellation);
}

void AttributeIndexing::countSort(int attribute, const work::Cancellation& cancellation) {
    countSaved(attribute, cost::sortedRow, cancellation);
}

void AttributeIndexing::countJoin(int attribute, const work::Cancellation& cancellation) {
    const bool isNumber = column(attribute).kind == Kind::Number;
    countSaved(attribute, cost::handedRow + (isNumber ? cost::keptNumber : cost::keptText), cancellation);
}

void AttributeIndexing::countSaved(int attribute, double perRow, const work::Cancellation& cancellation) {
    EngineIndices* indices = store();
    const auto rows = indices ? table_->featureCount().value_or(0) : 0;
    if (rows < fewestRows) {
        return;
    }
    use_ = {};
    follow(*indices);
    if (findIndex({attribute}, *indices) < 0) {
        make({attribute}, perRow * static_cast<double>(rows), *indices, cancellation);
    }
}

bool AttributeIndexing::collect(EngineIndices::RowLookup& rowLookup, const Terms& terms, std::size_t most,
                                std::vector<qint64>& rows) {
    std::vector<std::size_t> choice(terms.size(), 0);
    if (std::any_of(terms.begin(), terms.end(), [](const auto* term) { return term->operands.empty(); })) {
        return true; // an empty list
    }
    std::vector<dp::Cell> operands(terms.size());
    for (bool more = true; more;) {
        for (std::size_t i = 0; i < terms.size(); ++i) {
            operands[i] = dp::cellOf(terms[i]->operands[choice[i]]);
        }
        rowLookup.start(operands);
        for (qint64 row = 0; rowLookup.next(row);) {
            if (rows.size() == most) {
                return false;
            }
            rows.push_back(row);
        }
        more = false;
        for (std::size_t i = 0; i < terms.size() && !more; ++i) {
            more = ++choice[i] < terms[i]->operands.size();
            choice[i] = more ? choice[i] : 0;
        }
    }
    std::sort(rows.begin(), rows.end()); // operands that are equal under the collation find the same rows
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return true;
}

int AttributeIndexing::indexOn(int attribute) const {
    const EngineIndices* indices = known_ ? store() : nullptr;
    return indices && indices == known_ ? findIndex({attribute}, *indices) : -1;
}

std::optional<double> AttributeIndexing::averageGroup(int attribute) const {
    const int index = indexOn(attribute);
    const auto groups = index < 0 ? EngineIndices::Groups() : store()->groups(index, 1);
    return groups.number == 0 ? std::nullopt
                              : std::optional(static_cast<double>(store()->statistics(index).rows) /
                                              static_cast<double>(groups.number));
}

std::optional<double> AttributeIndexing::largestGroup(int attribute) const {
    const int index = indexOn(attribute);
    const auto groups = index < 0 ? EngineIndices::Groups() : store()->groups(index, 1);
    return groups.largest == 0 ? std::nullopt : std::optional(static_cast<double>(groups.largest));
}

std::optional<double> AttributeIndexing::countRows(int attribute, Comparison comparison,
                                                   const dp::Cell& operand, std::size_t most) const {
    const int index = indexOn(attribute);
    if (index < 0) {
        return std::nullopt;
    }
    const EngineIndices::Column condition{static_cast<quint32>(attribute), operationOf(comparison)};
    return static_cast<double>(store()->countRows(index, condition, operand, most));
}

} // namespace orvane::adaptor
