#include "host/adaptor/scanning/VirtualCursor.h"

#include "platform/cs/CoordSystem.h"
#include "platform/dp/SqliteCell.h"
#include "platform/geometry/measures/Neighbourhood.h"
#include "platform/geometry/relations/Relations.h"
#include "platform/geometry/shapes/Shapes.h"
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/NearnessBlob.h>
#include <orvane/engine/SpatialiteBlob.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace orvane::adaptor {

using geometry::GeometryPtr;

namespace {

/// Rows between two looks at the cancellation.
constexpr unsigned rowsBetweenChecks = 1024;

/// Sets an operand, reusing the memory of the text that was there; false for a value that only SQLite can
/// compare with the column.
bool setOperand(sqlite3_value* value, dp::ScanValue& operand) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_NULL: operand = std::monostate(); return true;
    case SQLITE_INTEGER: operand.emplace<std::int64_t>(sqlite3_value_int64(value)); return true;
    case SQLITE_FLOAT: operand.emplace<double>(sqlite3_value_double(value)); return true;
    case SQLITE_TEXT: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
        const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
        if (auto* known = std::get_if<std::string>(&operand)) {
            known->assign(text, size);
        } else {
            operand.emplace<std::string>(text, size);
        }
        return true;
    }
    default: return false;
    }
}

/// Calls `take` with each value of an In list; false when it holds one that `take` refuses.
template<class Take>
bool eachInList(sqlite3_value* list, Take take) {
    sqlite3_value* item = nullptr;
    for (int code = sqlite3_vtab_in_first(list, &item); code == SQLITE_OK && item;
         code = sqlite3_vtab_in_next(list, &item)) {
        if (!take(item)) {
            return false;
        }
    }
    return true;
}

/// The row number that a value is equal to, if it is one.
std::optional<qint64> rowNumberOf(sqlite3_value* value) {
    switch (sqlite3_value_numeric_type(value)) {
    case SQLITE_INTEGER: return sqlite3_value_int64(value);
    case SQLITE_FLOAT: {
        const double real = sqlite3_value_double(value);
        const qint64 whole = sqlite3_value_int64(value);
        return static_cast<double>(whole) == real ? std::optional<qint64>(whole) : std::nullopt;
    }
    default: return std::nullopt;
    }
}

/// The geometry of a blob, or of an operand column; null for anything else.
GeometryPtr geometryOf(sqlite3_value* value, engine::EngineCache& cache) {
    const int type = sqlite3_value_type(value);
    if (type != SQLITE_BLOB && type != SQLITE_TEXT) {
        return nullptr;
    }
    const auto* data = static_cast<const char*>(sqlite3_value_blob(value));
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
    double x = 0, y = 0;
    const auto header = engine::readSpatialiteHeader({data, size});
    if (header && engine::spatialiteBlobPoint(*header, x, y)) {
        // The usual value of a join by place, made for every row of the other table.
        auto point = std::make_shared<geometry::Point>(x, y);
        point->setCoordSystem(cache.get(header->srid));
        return point;
    }
    return cache.geometryInfo(data, static_cast<unsigned>(size), true).geometry();
}

/// In the geometry's coordinate system; null for an empty geometry.
GeometryPtr centroidOf(const geometry::Geometry& geometry) {
    const auto centroid = geometry::centroid(geometry);
    if (centroid) {
        centroid->setCoordSystem(geometry.coordSystem());
    }
    return centroid;
}

std::optional<engine::NearnessBlob> nearnessOf(sqlite3_value* value) {
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
    return engine::readNearness({bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))});
}

} // namespace

VirtualCursor::VirtualCursor(VirtualTable& table)
    : sqlite3_vtab_cursor{}, table_(table), coordSystem_(table.table().coordSystem()),
      geometryAttribute_(table.table().schema()->geometryIndex()), relations_(coordSystem_),
      repeated_(table.declaration()), geometry_(coordSystem_, table.cache()) {}

void VirtualCursor::readPlan(const char* planText) {
    plan_ = ScanPlan::fromText(planText);
    planText_ = planText;
    const ScanRecorder* recorder = ScanRecorder::current();
    report_ = recorder ? recorder->report(plan_.number) : nullptr;
    repeated_.restart();
    request_ = {};
    const auto& columns = table_.declaration().columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const bool isOperand = columns[i].kind == TableDeclaration::Kind::Operand;
        const int attribute = isOperand ? geometryAttribute_ : columns[i].attribute;
        if (attribute >= 0 && plan_.usesColumn(static_cast<int>(i))) {
            request_.attributes.push_back(attribute);
        }
    }
    for (const ScanPlan::Term& planned : plan_.terms) {
        dp::ScanTerm& term = request_.terms.emplace_back();
        term.attribute = columns[static_cast<std::size_t>(planned.column)].attribute;
        term.comparison = planned.comparison;
        term.collation = planned.collation;
    }
}

bool VirtualCursor::readRowNumbers(sqlite3_value* value) {
    auto& ids = request_.ids.emplace();
    const auto add = [this, &ids](sqlite3_value* item) {
        const auto number = rowNumberOf(item);
        if (dp::FeatureId id = number ? table_.idOfRow(*number, cancellation_) : dp::FeatureId();
            id.isValid()) {
            ids.push_back(std::move(id));
        }
        return true;
    };
    if (plan_.rowNumber == ScanPlan::RowNumber::In) {
        eachInList(value, add);
    } else {
        add(value);
    }
    return !ids.empty();
}

/// False when no row can stand in the relation. What is not looked up is tested on each row.
bool VirtualCursor::readRelation(const ScanPlan::Relation& relation, sqlite3_value* value, bool isLookedUp) {
    if (relation.relation == SpatialRelation::Near) {
        return readNearness(value);
    }
    GeometryPtr related = geometryOf(value, table_.cache());
    if (!related) {
        return false;
    }
    const auto other = related->coordSystem();
    const bool isElsewhere = coordSystem_ && other && coordSystem_ != other && !coordSystem_->equals(*other);
    if (isElsewhere && relation.countsElsewhere()) {
        if (isLookedUp && lookUpElsewhere(relation, related)) {
            return !request_.ids->empty();
        }
        relations_.add(relation, related, false);
        return !request_.ids || !request_.ids->empty();
    }
    if (isElsewhere) {
        related = relation.ofColumn() == SpatialRelation::ContainsCentroid ? centroidOf(*related) : related;
        related = related ? related->transformed(coordSystem_) : nullptr;
        if (!related) {
            return false; // no relation to anything here
        }
    }
    if (isLookedUp && table_.spatialIndexing().find(relation.ofColumn(), related, relation.isRepeated,
                                                    table_.table(), request_, cancellation_)) {
        return !request_.ids->empty();
    }
    relations_.add(relation, related, true);
    return true;
}

/// A relation in the value's coordinate system: true when the rows that stand in it are known. An edge is
/// straight in one of the two systems only, so that of what is more than a position only vertices, and the
/// centroid, can be told to lie in an envelope of the table's system; those rows are tested.
bool VirtualCursor::lookUpElsewhere(const ScanPlan::Relation& relation, const GeometryPtr& value) {
    const geometry::Envelope envelope = value->envelope();
    if (envelope.isEmpty()) {
        request_.ids.emplace();
        return true;
    }
    SpatialIndexing& indexing = table_.spatialIndexing();
    const SpaceStatistics* const sample = table_.space().statistics();
    if (holdsVertices(relation.ofColumn()) ||
        (sample && sample->arePositions() && indexing.tree(table_.table(), cancellation_).arePositions())) {
        if (const auto here = geometry::envelopeIn(*coordSystem_, envelope, *value->coordSystem())) {
            indexing.findInEnvelope(*here, table_.table(), request_, cancellation_);
        }
        return false;
    }
    return indexing.findElsewhere(relation.ofColumn(), value, relation.isRepeated, table_.table(), request_,
                                  cancellation_);
}

GeometryPtr VirtualCursor::centreOf(const engine::NearnessBlob& nearness) {
    return table_.cache()
        .geometryInfo(nearness.centre.data(), static_cast<unsigned>(nearness.centre.size()), true)
        .geometry();
}

void VirtualCursor::readOrigin(sqlite3_value* value) {
    const auto asked = nearnessOf(value);
    origin_ = asked ? centreOf(*asked) : nullptr;
    originMeasure_ = asked ? asked->asked : geometry::Nearness();
}

/// Where the index cannot tell what is near, all rows come: the condition is tested on each in any case.
bool VirtualCursor::readNearness(sqlite3_value* value) {
    const auto asked = nearnessOf(value);
    if (!asked) {
        return false;
    }
    const GeometryPtr centre = centreOf(*asked);
    if (!centre) {
        return false; // has no distance to anything
    }
    table_.spatialIndexing().findNear(*centre, asked->asked, table_.table(), request_, cancellation_);
    return !request_.ids || !request_.ids->empty();
}

bool VirtualCursor::readOperands(sqlite3_value* value, dp::ScanTerm& term) {
    switch (term.comparison) {
    case dp::Comparison::IsNull:
    case dp::Comparison::IsNotNull: return true;
    case dp::Comparison::In:
        term.operands.clear();
        return eachInList(
            value, [&term](sqlite3_value* item) { return setOperand(item, term.operands.emplace_back()); });
    default: term.operands.resize(1); return setOperand(value, term.operands.front());
    }
}

bool VirtualCursor::readArguments(std::span<sqlite3_value*> arguments) {
    request_.ids.reset();
    request_.window.reset();
    relations_.clear();
    request_.limit = -1;
    std::size_t next = 0;
    for (std::size_t term = 0; next < plan_.terms.size(); ++next) {
        if (readOperands(arguments[next], request_.terms[term])) {
            ++term;
        } else {
            request_.terms.erase(request_.terms.begin() + static_cast<std::ptrdiff_t>(term));
            planText_ = nullptr; // the next scan takes all terms again
        }
    }
    if (plan_.looksUpRowNumbers() && !readRowNumbers(arguments[next++])) {
        return false;
    }
    if (plan_.rowNumber == ScanPlan::RowNumber::Other) {
        table_.numberRows(cancellation_);
    }
    for (std::size_t i = 0; i < plan_.relations.size(); ++i) {
        if (!readRelation(plan_.relations[i], arguments[next++], i == 0)) {
            return false;
        }
    }
    if (auto& attributes = request_.attributes;
        !relations_.isEmpty() &&
        std::find(attributes.begin(), attributes.end(), geometryAttribute_) == attributes.end()) {
        attributes.push_back(geometryAttribute_);
    }
    if (plan_.byDistance != ScanPlan::ByDistance::None) {
        readOrigin(arguments[next++]);
    }
    if (plan_.limit) {
        const sqlite3_int64 limit = sqlite3_value_int64(arguments[next++]);
        const sqlite3_int64 offset = plan_.offset ? sqlite3_value_int64(arguments[next++]) : 0;
        constexpr sqlite3_int64 most = std::int64_t{1} << 62;
        if (limit >= 0 && limit < most && offset < most) {
            request_.limit = limit + (offset > 0 ? offset : 0);
        }
    }
    return true;
}

int VirtualCursor::filter(const char* planText, std::span<sqlite3_value*> arguments) {
    rows_ = nullptr;
    nearest_ = nullptr;
    cancellation_ = {};
    if (planText == planText_ && ordered_ && arguments.empty()) {
        startOrdered(); // the same rows again, for another row of an outer table
        return SQLITE_OK;
    }
    scan_.reset();
    ordered_.reset();
    if (planText != planText_) {
        readPlan(planText);
    }
    openRows(arguments);
    if (report_) {
        report();
    }
    const bool isOrderPromised =
        plan_.ordering == ScanPlan::Ordering::InMemory || plan_.ordering == ScanPlan::Ordering::ByIndex;
    return rows_ && isOrderPromised && !isInIndexOrder_ ? arrange() : SQLITE_OK;
}

void VirtualCursor::openRows(std::span<sqlite3_value*> arguments) {
    if (!readArguments(arguments)) {
        return;
    }
    filter_.assign(request_.terms);
    if (filter_.matchesNothing()) {
        return;
    }
    if (origin_ && plan_.byDistance != ScanPlan::ByDistance::None) {
        openByDistance();
    } else if (request_.ids || !relations_.isEmpty() || request_.window) {
        scan_ = table_.table().openCursor(request_);
        rows_ = scan_.get();
    } else {
        openTerms();
    }
}

/// From memory, through an attribute index, or from the table.
void VirtualCursor::openTerms() {
    dp::Table& table = table_.table();
    if (openInOrder()) {
        return;
    }
    const bool mayRepeat = plan_.ordering == ScanPlan::Ordering::None && !request_.terms.empty();
    rows_ = mayRepeat ? repeated_.find(table, request_, cancellation_) : nullptr;
    if (rows_) {
        return;
    }
    if (plan_.joined >= 0) {
        const auto& joined = table_.declaration().columns()[static_cast<std::size_t>(plan_.joined)];
        table_.indexing().countJoin(joined.attribute, cancellation_);
    }
    request_.ids = table_.indexing().find(request_.terms, cancellation_);
    if (!request_.ids || !request_.ids->empty()) {
        scan_ = table.openCursor(request_);
        rows_ = scan_.get();
    }
    if (request_.ids) {
        repeated_.countLookup(request_.ids->size());
    } else {
        repeated_.countScan(table, table_.indexing().lastUse().outcome, scan_->isLookedUp());
    }
}

void VirtualCursor::openByDistance() {
    constexpr std::size_t likelyWanted = 10;
    const bool isLooked = plan_.byDistance == ScanPlan::ByDistance::Looked;
    const std::size_t wanted = request_.limit >= 0 ? static_cast<std::size_t>(request_.limit) : likelyWanted;
    request_.limit = -1;
    auto nearest = std::make_unique<NearestRows>(table_, request_, origin_, originMeasure_, wanted, isLooked,
                                                 cancellation_);
    nearest_ = nearest.get();
    scan_ = std::move(nearest);
    rows_ = scan_.get();
}

/// What the plan says of an attribute index for the order of the rows; false when the scan has to be made.
bool VirtualCursor::openInOrder() {
    isInIndexOrder_ = false;
    if (plan_.ordering != ScanPlan::Ordering::ByIndex && plan_.ordering != ScanPlan::Ordering::WantsIndex) {
        return false;
    }
    auto keys = orderKeys();
    if (plan_.ordering == ScanPlan::Ordering::WantsIndex) {
        table_.indexing().countSort(keys.front().attribute, cancellation_);
        return false;
    }
    scan_ = table_.indexing().openInOrder(request_.attributes, std::move(keys), cancellation_);
    rows_ = scan_.get();
    isInIndexOrder_ = rows_ != nullptr;
    return isInIndexOrder_;
}

std::vector<ArrangedRows::Key> VirtualCursor::orderKeys() const {
    const auto& columns = table_.declaration().columns();
    std::vector<ArrangedRows::Key> keys;
    for (const ScanPlan::Order& each : plan_.order) {
        const TableDeclaration::Column& column = columns[static_cast<std::size_t>(each.column)];
        keys.push_back({column.attribute, column.collation, each.isDescending});
    }
    return keys;
}

int VirtualCursor::arrange() {
    if (report_) {
        report_->isArranged = true;
    }
    ArrangedRows ordered(request_.attributes, orderKeys());
    if (request_.terms.empty() && relations_.isEmpty() && !request_.ids) {
        constexpr std::int64_t mostReserved = std::int64_t{1} << 22; // a file may tell any number
        const std::int64_t count = table_.table().featureCount().value_or(0);
        ordered.reserve(static_cast<std::size_t>(std::clamp(count, std::int64_t{0}, mostReserved)));
    }
    for (int code = next(); rows_ || code != SQLITE_OK; code = next()) {
        if (code != SQLITE_OK) {
            return code;
        }
        ordered.add(*rows_);
        if (ordered.rowCount() % rowsBetweenChecks == 0 && cancellation_.isRequested()) {
            return SQLITE_INTERRUPT;
        }
    }
    ordered.arrangeInOrder(cancellation_);
    ordered_.emplace(std::move(ordered));
    startOrdered();
    return SQLITE_OK;
}

void VirtualCursor::startOrdered() {
    orderedRows_.start(*ordered_, ordered_->all());
    rows_ = &orderedRows_;
}

void VirtualCursor::report() {
    ScanReport& report = *report_;
    const auto note = [&report](Access access) { ++report.scansBy(access); };
    if (!relations_.isEmpty() && !request_.ids && !request_.window) {
        note(table_.spatialIndexing().lastUse().isScan ? Access::SourceBoxes : Access::Relation);
    } else if (!rows_ && !request_.ids) {
        ++report.emptyScans;
    } else if (plan_.looksUpRowNumbers()) {
        note(Access::RowNumber);
    } else if (!plan_.relations.empty() || (nearest_ && plan_.byDistance == ScanPlan::ByDistance::Looked)) {
        const SpatialIndexing::Use& use = table_.spatialIndexing().lastUse();
        note(!use.isOfTable        ? Access::SpatialIndex
             : scan_->isLookedUp() ? Access::SourceSpatialIndex
                                   : Access::SourceBoxes);
        report.makingMs = use.makingMs ? use.makingMs : report.makingMs;
    } else if (rows_ && !scan_) {
        note(Access::Memory);
    } else if (isInIndexOrder_) {
        note(Access::AttributeIndex);
        report.take(table_.indexing().lastUse(), *table_.table().schema());
    } else if (!request_.ids && scan_->isLookedUp()) {
        note(Access::SourceIndex);
        noteSourceIndices();
    } else {
        const bool isFiltered =
            std::any_of(report.planned.conditions.begin(), report.planned.conditions.end(),
                        [](const PlannedCondition& condition) { return condition.isForSource; });
        note(request_.ids ? Access::AttributeIndex : isFiltered ? Access::SourceFilter : Access::WholeTable);
        if (!request_.terms.empty()) {
            report.take(table_.indexing().lastUse(), *table_.table().schema());
        }
    }
}

void VirtualCursor::noteSourceIndices() {
    const dp::Table& table = table_.table();
    for (const dp::ScanTerm& term : request_.terms) {
        const QString name = table.schema()->at(term.attribute)->name();
        if (table.looksUp(term.attribute, term.comparison, term.collation) &&
            !report_->sourceIndexColumns.contains(name)) {
            report_->sourceIndexColumns += name;
        }
    }
}

bool VirtualCursor::accepts() {
    if (request_.window) {
        table_.spatialIndexing().countRow();
    }
    if (!filter_.isEmpty() && !filter_.accepts(*rows_)) {
        return false;
    }
    return relations_.isEmpty() || relations_.accepts(rows_->cell(geometryAttribute_));
}

int VirtualCursor::next() {
    geometry_.forgetRow();
    if (ordered_) {
        rows_ = rows_->next() ? rows_ : nullptr;
        return SQLITE_OK;
    }
    unsigned row = 1;
    for (; rows_->next(); ++row) {
        if (accepts()) {
            if (report_) {
                report_->rowsRead += row;
                ++report_->rowsPassed;
            }
            return SQLITE_OK;
        }
        if (row % rowsBetweenChecks == 0 && cancellation_.isRequested()) {
            return SQLITE_INTERRUPT;
        }
    }
    if (report_) {
        report_->rowsRead += row - 1;
    }
    rows_ = nullptr;
    return cancellation_.isRequested() ? SQLITE_INTERRUPT : SQLITE_OK;
}

void VirtualCursor::column(sqlite3_context* context, int column) {
    const TableDeclaration::Column& declared =
        table_.declaration().columns()[static_cast<std::size_t>(column)];
    if (declared.kind == TableDeclaration::Kind::Distance && nearest_) {
        dp::setResult(context, nearest_->distance());
        return;
    }
    if (declared.kind == TableDeclaration::Kind::Operand && geometryAttribute_ >= 0) {
        const dp::Cell cell = rows_->cell(geometryAttribute_);
        if (cell.type() == dp::CellType::Wkb) {
            geometry_.setOperand(context, cell.view());
        }
        return;
    }
    if (declared.attribute < 0 || sqlite3_vtab_nochange(context)) {
        return; // NULL; an update that leaves the column alone does not read it
    }
    const dp::Cell cell = rows_->cell(declared.attribute);
    if (cell.type() == dp::CellType::Wkb) {
        geometry_.set(context, cell.view());
    } else {
        dp::setResult(context, cell);
    }
}

sqlite3_int64 VirtualCursor::rowNumber() {
    return table_.cache().assignIdToInt(rows_->featureId());
}

} // namespace orvane::adaptor
