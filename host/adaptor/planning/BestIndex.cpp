#include "host/adaptor/planning/BestIndex.h"

#include "host/adaptor/explaining/ScanReport.h"
#include "host/adaptor/indices/Costs.h"
#include "host/adaptor/planning/Constraints.h"
#include "host/adaptor/planning/RelationTerms.h"
#include "host/adaptor/planning/ScanEstimate.h"
#include "host/adaptor/planning/ScanPlan.h"
#include "host/adaptor/rows/ArrangedRows.h"
#include "host/adaptor/tables/VirtualTable.h"
#include "platform/utils/Quoting.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

namespace orvane::adaptor {

namespace {

using dp::Comparison;
using Kind = TableDeclaration::Kind;

/// Up to this size, rows are put in order in memory; texts and geometries above ByteArena::heapBytes
/// go to a file.
constexpr double mostOrderedBytes = 256 << 20;
/// A geometry, as far as nothing is known of it.
constexpr double wideValueBytes = 256;

/// Fills the answer to one xBestIndex call.
class Planner {
public:
    Planner(VirtualTable& table, sqlite3_index_info& info)
        : virtual_(table), indexing_(table.indexing()), table_(table.table()),
          declaration_(table.declaration()), info_(info), constraints_(info),
          estimate_(table_, indexing_, table.values()), relations_(table) {
        plan_.columnsUsed = info.colUsed;
    }

    /// False where SQLite may not make the scan as it asks: the distance of its rows would be unknown.
    bool run() {
        for (int i = 0; i < constraints_.count(); ++i) {
            conditions_ += !constraints_.isLimit(i) && !constraints_.isOffset(i);
        }
        noteRowNumbers();
        if (!noteOrigin()) {
            return false;
        }
        readStatistics();
        // Terms are checked in this order: texts, which are slow to compare, only where the numbers agree.
        for (const bool numbers : {true, false}) {
            for (int i = 0; i < constraints_.count(); ++i) {
                if (constraints_.isUsable(i) && isOnNumber(i) == numbers) {
                    take(i);
                }
            }
        }
        takeRowNumber();
        takeRelations();
        takeOrigin();
        takeLimit();
        takeOrder();
        noteJoined();
        store();
        return true;
    }

private:
    void hand(int i, bool omit) {
        info_.aConstraintUsage[i].argvIndex = ++arguments_;
        info_.aConstraintUsage[i].omit = omit;
    }

    /// What the values of the columns are like matters where several tables can be put in order: where a
    /// constraint waits for another table, or has a value that is not known yet. A scan by itself is not
    /// worth a look at the table first, unless somebody wants to know.
    void readStatistics() {
        bool isJoined = recorder_ != nullptr;
        std::vector<int> attributes;
        for (int i = 0; i < constraints_.count(); ++i) {
            const auto comparison = constraints_.comparison(i);
            isJoined = isJoined || !constraints_.isUsable(i) || isOfOperand(i);
            if (!comparison || constraints_.column(i) < 0) {
                continue;
            }
            const auto& column = declaration_.columns()[static_cast<std::size_t>(constraints_.column(i))];
            if (column.attribute < 0 || (column.kind != Kind::Number && column.kind != Kind::Text)) {
                continue;
            }
            attributes.push_back(column.attribute);
            const bool hasOperand = *comparison != Comparison::IsNull && *comparison != Comparison::IsNotNull;
            isJoined =
                isJoined || (hasOperand && !constraints_.constantOperand(i) && !constraints_.isList(i));
        }
        if (isJoined) {
            virtual_.values().read(std::move(attributes));
        }
    }

    /// Whether it is about a relation with the geometries of another table.
    bool isOfOperand(int i) const {
        return constraints_.column(i) == declaration_.firstOperandColumn() ||
               constraints_.column(i) == declaration_.secondOperandColumn();
    }

    bool isOnNumber(int i) const {
        const int column = constraints_.column(i);
        return column >= 0 && declaration_.columns()[static_cast<std::size_t>(column)].kind == Kind::Number;
    }

    void take(int i) {
        const int column = constraints_.column(i);
        const std::optional<Comparison> comparison = constraints_.comparison(i);
        if (recorder_ && column >= 0 && !constraints_.isLimit(i) && !constraints_.isOffset(i)) {
            takeDown(i, declaration_.columns()[static_cast<std::size_t>(column)], comparison);
        }
        if (constraints_.isLimit(i)) {
            limit_ = i;
        } else if (constraints_.isOffset(i)) {
            offset_ = i;
        } else if (column == declaration_.originColumn()) {
            return;
        } else if (isOfOperand(i)) {
            relations_.addEquality(info_, i);
        } else if (column < 0) {
            rowNumber_ = comparison && ScanEstimate::isEquality(*comparison) ? i : rowNumber_;
        } else if (constraints_.isFunction(i)) {
            if (column == declaration_.geometryColumn()) {
                relations_.addFunction(info_, i);
            }
        } else if (column >= 0 && comparison) {
            takeTerm(i, declaration_.columns()[static_cast<std::size_t>(column)], *comparison);
        }
    }

    /// Notes a condition on a plain attribute for whoever asks how the statement is answered.
    void takeDown(int i, const TableDeclaration::Column& column, std::optional<Comparison> comparison) {
        if (column.attribute < 0 || column.kind == Kind::Geometry || column.kind == Kind::Style) {
            return;
        }
        PlannedCondition& noted = planned_.conditions.emplace_back();
        noted.attribute = column.attribute;
        noted.column = table_.schema()->at(column.attribute)->name();
        noted.comparison = QLatin1String(constraints_.operatorText(i));
        const auto collation = constraints_.collation(i);
        if (!comparison || !collation) {
            noted.index = comparison ? IndexUse::Outcome::Collation : IndexUse::Outcome::Comparison;
            return;
        }
        noted.index = AttributeIndexing::judge(column, *comparison, *collation);
        noted.isForSource = table_.usesTerm(column.attribute, *comparison, *collation);
        noted.isPattern = AttributeIndexing::isPattern(*comparison);
        const dp::Cell operand =
            noted.isPattern ? constraints_.constantOperand(i).value_or(dp::Cell()) : dp::Cell();
        if (operand.type() == dp::CellType::Text) {
            noted.comparison += QLatin1Char(' ') + QString::fromStdString(utils::sqlText(operand.view()));
            if (noted.index == IndexUse::Outcome::Used && !isLookedUp(*comparison, operand)) {
                noted.index = IndexUse::Outcome::Pattern;
            }
        }
    }

    /// Whether an index could answer the pattern; true also where none is to be made.
    bool isLookedUp(Comparison comparison, const dp::Cell& pattern) const {
        return !indexing_.isOn() || indexing_.narrows(comparison, pattern.view());
    }

    void takeTerm(int i, const TableDeclaration::Column& column, Comparison comparison) {
        const bool nullTest = comparison == Comparison::IsNull || comparison == Comparison::IsNotNull;
        if (column.attribute < 0 || (!nullTest && column.kind != Kind::Number && column.kind != Kind::Text)) {
            return;
        }
        if (AttributeIndexing::isPattern(comparison)) {
            takePattern(i, column, comparison);
            return;
        }
        const auto collation = constraints_.collation(i);
        if (!collation) {
            return;
        }
        if (comparison == Comparison::Equal && constraints_.takeList(i)) {
            comparison = Comparison::In;
        }
        // SQLite does not say under which collation <> and Is Not compare texts. Binary lets too many rows
        // pass.
        const bool knownCollation = column.kind == Kind::Number ||
                                    (comparison != Comparison::NotEqual && comparison != Comparison::IsNot);
        const bool hasOperand = !nullTest && comparison != Comparison::In;
        const auto operand = hasOperand ? constraints_.constantOperand(i) : std::nullopt;
        const bool isOwnKind = operand && column.comparesAsIs(operand->type());
        hasOpenOperand_ = hasOpenOperand_ || (hasOperand && !operand);
        hand(i, nullTest || (isOwnKind && knownCollation));
        plan_.terms.push_back({constraints_.column(i), comparison, *collation});
        estimate_.takeTerm(column, comparison, *collation, operand);
    }

    /// SQLite matches the pattern once more; the scan only finds the rows that begin as it does.
    void takePattern(int i, const TableDeclaration::Column& column, Comparison comparison) {
        const auto operand = constraints_.constantOperand(i);
        const bool isText = operand && operand->type() == dp::CellType::Text;
        if (!column.isLocaleText() || (isText && !isLookedUp(comparison, *operand))) {
            estimate_.takeUnservedPattern(column, comparison, operand);
            return;
        }
        hand(i, false);
        plan_.terms.push_back({constraints_.column(i), comparison, column.collation});
        hasOpenOperand_ = hasOpenOperand_ || !operand;
        estimate_.takePattern(column, comparison, operand);
    }

    /// A scan that leaves rows out would number those that it reads before the others.
    void noteRowNumbers() {
        for (int i = 0; i < constraints_.count(); ++i) {
            const auto comparison = constraints_.comparison(i);
            if (constraints_.column(i) < 0 && comparison && !ScanEstimate::isEquality(*comparison)) {
                plan_.rowNumber = ScanPlan::RowNumber::Other;
            }
        }
    }

    bool noteOrigin() {
        for (int i = 0; i < constraints_.count(); ++i) {
            if (constraints_.column(i) == declaration_.originColumn()) {
                origin_ = i;
                return constraints_.isUsable(i) && constraints_.operation(i) == SQLITE_INDEX_CONSTRAINT_IS;
            }
        }
        return true;
    }

    /// The rows come in the order of their distance, so that a limit ends the scan. Conditions on row numbers
    /// and relations are left to SQLite then.
    void takeOrigin() {
        if (origin_ < 0) {
            return;
        }
        hand(origin_, true);
        hasOpenOperand_ = true;
        constexpr double likelyWanted = 100;
        plan_.byDistance = plan_.terms.empty() || estimate_.expectedRows() > likelyWanted
                               ? ScanPlan::ByDistance::Looked
                               : ScanPlan::ByDistance::Measured;
        info_.orderByConsumed = info_.nOrderBy == 1 && !info_.aOrderBy[0].desc &&
                                info_.aOrderBy[0].iColumn == declaration_.distanceColumn();
    }

    void takeRowNumber() {
        if (rowNumber_ < 0) {
            return;
        }
        if (origin_ >= 0) {
            plan_.rowNumber = ScanPlan::RowNumber::Other;
            return;
        }
        const bool list = constraints_.takeList(rowNumber_);
        hand(rowNumber_,
             true); // the scan finds just those rows: a list may be a query that is dear to repeat
        plan_.rowNumber = list ? ScanPlan::RowNumber::In : ScanPlan::RowNumber::Equal;
        estimate_.takeRowNumbers(list);
        hasOpenOperand_ = true;
    }

    /// The cursor tests relations exactly as SQLite would, so that it need not. Of several the one that finds
    /// the fewest is looked up; of the others it tests the equalities, for which SQLite would decode both
    /// geometries for every pair of rows.
    void takeRelations() {
        if (relations_.isEmpty() || rowNumber_ >= 0 || origin_ >= 0) {
            return;
        }
        const auto [best, estimate] = relations_.best();
        takeRelation(best);
        for (const RelationTerm& other : relations_.equalities()) {
            if (other.constraint != best.constraint) {
                takeRelation(other);
            }
        }
        hasOpenOperand_ = true;
        estimate_.takeRelation(estimate);
    }

    void takeRelation(const RelationTerm& term) {
        plan_.relations.push_back(term.relation);
        hand(term.constraint, true);
        leaveOutOperand(constraints_.column(term.constraint));
    }

    /// An operand column that nothing but conditions taken over name is not read.
    void leaveOutOperand(int column) {
        constexpr int lastOfMask = 63;
        bool isNamed = column == declaration_.geometryColumn() || column >= lastOfMask;
        for (int i = 0; i < constraints_.count(); ++i) {
            isNamed =
                isNamed || (constraints_.column(i) == column && info_.aConstraintUsage[i].argvIndex == 0);
        }
        if (!isNamed) {
            plan_.columnsUsed &= ~(std::uint64_t{1} << column);
        }
    }

    /// Of a scan of the whole table.
    void noteJoined() {
        if (arguments_ > 0 || !indexing_.isOn()) {
            return;
        }
        int joins = 0;
        for (int i = 0; i < constraints_.count(); ++i) {
            const int column = constraints_.column(i);
            const auto comparison = constraints_.comparison(i);
            const auto collation = constraints_.collation(i);
            if (constraints_.isUsable(i) || column < 0 || comparison != Comparison::Equal || !collation) {
                continue;
            }
            ++joins;
            const auto& joined = declaration_.columns()[static_cast<std::size_t>(column)];
            const bool isServed = AttributeIndexing::serves(joined, *collation, estimate_.tableRows());
            plan_.joined = joins == 1 && isServed ? column : -1;
        }
    }

    /// A limit counts rows of the result. They are rows of the scan only when nothing sorts or drops rows
    /// after it.
    void takeLimit() {
        const bool isByDistance = info_.orderByConsumed != 0 && conditions_ == 1;
        if (limit_ < 0 || (!isByDistance && (info_.nOrderBy > 0 || conditions_ > 0))) {
            return;
        }
        plan_.limit = true;
        hand(limit_, false);
        if (offset_ >= 0) {
            plan_.offset = true;
            hand(offset_, false);
        }
    }

    /// Group By and Distinct come cheaper from rows put in order here, by ranks of the different values, than
    /// from SQLite's sorter, which compares the texts. A plain Order By is SQLite's, unless an index has the
    /// order of the first column and the first rows are likely all that is wanted. Rows that are asked for
    /// anew for every row of another table are never many.
    void takeOrder() {
        if (info_.nOrderBy == 0 || hasOpenOperand_) {
            return;
        }
        for (int i = 0; i < info_.nOrderBy; ++i) {
            const int column = info_.aOrderBy[i].iColumn;
            if (column < 0 || !isPlain(declaration_.columns()[static_cast<std::size_t>(column)])) {
                plan_.order.clear();
                return;
            }
            plan_.order.push_back({column, info_.aOrderBy[i].desc != 0});
        }
        plan_.ordering = chooseOrdering();
        if (plan_.ordering == ScanPlan::Ordering::None) {
            plan_.order.clear();
        }
        info_.orderByConsumed =
            plan_.ordering == ScanPlan::Ordering::InMemory || plan_.ordering == ScanPlan::Ordering::ByIndex;
    }

    ScanPlan::Ordering chooseOrdering() const {
        using Ordering = ScanPlan::Ordering;
        if (sqlite3_vtab_distinct(&info_) > 0) {
            return limit_ < 0 && isArrangeable(estimate_.tableRows()) ? Ordering::InMemory : Ordering::None;
        }
        const int position = plan_.order.front().column;
        const int attribute = declaration_.columns()[static_cast<std::size_t>(position)].attribute;
        const bool isOnlyColumn = position < 63 && info_.colUsed == std::uint64_t{1} << position;
        const bool isMaximum = isOnlyColumn && plan_.order.size() == 1 && plan_.order.front().isDescending;
        if (conditions_ > 0 || !indexing_.isOn() || (limit_ < 0 && !isMaximum)) {
            return Ordering::None;
        }
        if (!indexing_.hasOrder(attribute)) {
            return limit_ >= 0 ? Ordering::WantsIndex : Ordering::None;
        }
        return plan_.order.size() == 1 || sortsLittle(attribute) ? Ordering::ByIndex : Ordering::None;
    }

    /// Whether rows that agree in the first column of the order are few enough to be fetched one by one and
    /// put in order by the others: their number is that of the largest such group, since it may come first.
    bool sortsLittle(int attribute) const {
        const double group = indexing_.largestGroup(attribute).value_or(estimate_.tableRows());
        const double wanted = constantNumber(limit_) + constantNumber(offset_);
        const double fetching = (wanted + group) * cost::foundRow;
        return fetching < estimate_.tableRows() * (cost::handedRow + cost::sortedRow) &&
               isArrangeable(wanted + group);
    }

    /// 0 where the value is not known yet.
    double constantNumber(int i) const {
        const auto value = i < 0 ? std::nullopt : constraints_.constantOperand(i);
        return value && value->type() == dp::CellType::Integer ? static_cast<double>(value->integer()) : 0;
    }

    /// Whether so many rows go into memory with all columns used.
    bool isArrangeable(double rows) const {
        std::size_t used = 0;
        std::size_t wide = 0;
        for (std::size_t i = 0; i < declaration_.columns().size(); ++i) {
            const TableDeclaration::Column& column = declaration_.columns()[i];
            if (column.attribute >= 0 && plan_.usesColumn(static_cast<int>(i))) {
                ++used;
                wide += !isPlain(column);
            }
        }
        return ArrangedRows::expectedBytes(rows, used, plan_.order.size()) +
                   rows * static_cast<double>(wide) * wideValueBytes <=
               mostOrderedBytes;
    }

    static bool isPlain(const TableDeclaration::Column& column) {
        return column.attribute >= 0 && (column.kind == Kind::Number || column.kind == Kind::Text);
    }

    void store() {
        const double expected = estimate_.expectedRows();
        if (recorder_) {
            planned_.table = virtual_.name();
            planned_.tableRows = static_cast<double>(table_.featureCount().value_or(0));
            planned_.expectedRows = expected;
            plan_.number = recorder_->add(std::move(planned_));
        }
        const std::string text = plan_.toText();
        info_.idxStr = static_cast<char*>(sqlite3_malloc64(text.size() + 1));
        if (!info_.idxStr) {
            throw std::bad_alloc();
        }
        std::memcpy(info_.idxStr, text.c_str(), text.size() + 1);
        info_.needToFreeIdxStr = 1;
        info_.estimatedRows = static_cast<sqlite3_int64>(expected);
        info_.estimatedCost =
            1 + expected + estimate_.findingCost() / cost::handedRow; // SQLite reckons in rows
        info_.idxFlags = estimate_.isUnique() ? SQLITE_INDEX_SCAN_UNIQUE : 0;
    }

    VirtualTable& virtual_;
    const AttributeIndexing& indexing_;
    dp::Table& table_;
    const TableDeclaration& declaration_;
    sqlite3_index_info& info_;
    const Constraints constraints_;
    ScanPlan plan_;
    ScanRecorder* const recorder_ = ScanRecorder::current();
    PlannedScan planned_; ///< kept for the recorder only
    ScanEstimate estimate_;
    bool hasOpenOperand_ = false; ///< some operand is known only when the scan starts
    int arguments_ = 0;
    int conditions_ = 0; ///< constraints on columns, taken over or not
    int limit_ = -1;
    int offset_ = -1;
    int rowNumber_ = -1;
    RelationTerms relations_;
    int origin_ = -1;
};

} // namespace

bool planScan(VirtualTable& table, sqlite3_index_info& info) {
    return Planner(table, info).run();
}

} // namespace orvane::adaptor
