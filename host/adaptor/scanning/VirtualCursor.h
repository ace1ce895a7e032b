#pragma once

#include "host/adaptor/explaining/ScanReport.h"
#include "host/adaptor/planning/ScanPlan.h"
#include "host/adaptor/rows/ArrangedRows.h"
#include "host/adaptor/scanning/GeometryResult.h"
#include "host/adaptor/scanning/NearestRows.h"
#include "host/adaptor/scanning/RelationFilter.h"
#include "host/adaptor/scanning/RepeatedScan.h"
#include "host/adaptor/scanning/TermFilter.h"
#include "host/adaptor/tables/VirtualTable.h"

#include "platform/work/Cancellation.h"

#include <orvane/engine/NearnessBlob.h>

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <span>

namespace orvane::adaptor {

/// One scan over a virtual table, or many one after another when a join repeats it. Belongs to SQLite. Its
/// operations throw; the module turns that into codes.
class VirtualCursor : public sqlite3_vtab_cursor {
public:
    explicit VirtualCursor(VirtualTable& table);

    /// Starts a scan by a plan that xBestIndex wrote and the values that go with it (xFilter). Returns
    /// SQLITE_INTERRUPT as next does.
    int filter(const char* planText, std::span<sqlite3_value*> arguments);
    /// Moves to the next row that the terms let pass. Returns SQLITE_INTERRUPT when the query was cancelled
    /// meanwhile.
    int next();
    bool atEnd() const { return !rows_; }
    void column(sqlite3_context* context, int column);
    sqlite3_int64 rowNumber();

private:
    void readPlan(const char* planText);
    /// Puts the argument of a term into the request; false when it is for SQLite to compare with the column.
    static bool readOperands(sqlite3_value* value, dp::ScanTerm& term);
    /// Turns the arguments into the terms, identifiers and limit of the request; false when no row can match.
    bool readArguments(std::span<sqlite3_value*> arguments);
    bool readRowNumbers(sqlite3_value* value);
    bool readRelation(const ScanPlan::Relation& relation, sqlite3_value* value, bool isLookedUp);
    bool lookUpElsewhere(const ScanPlan::Relation& relation, const geometry::GeometryPtr& value);
    bool readNearness(sqlite3_value* value);
    geometry::GeometryPtr centreOf(const engine::NearnessBlob& nearness);
    void readOrigin(sqlite3_value* value);
    bool accepts();
    /// Opens the rows that can match, if there can be any.
    void openRows(std::span<sqlite3_value*> arguments);
    void openTerms();
    void openByDistance();
    bool openInOrder();
    std::vector<ArrangedRows::Key> orderKeys() const;
    /// Reads all rows and puts them into the plan's order.
    int arrange();
    void startOrdered();
    /// Tells the report how the scan that was just started gets its rows.
    void report();
    void noteSourceIndices();

    VirtualTable& table_;
    const char* planText_ = nullptr; ///< the text of plan_; SQLite keeps it as long as the statement
    ScanPlan plan_;
    dp::ScanRequest request_;
    TermFilter filter_;
    geometry::GeometryPtr origin_; ///< of distances; null where they are all NULL
    geometry::Nearness originMeasure_;
    NearestRows* nearest_ = nullptr; ///< scan_, where its rows come by their distance
    const std::shared_ptr<cs::CoordSystem> coordSystem_;
    const int geometryAttribute_;
    RelationFilter relations_;
    dp::Cursor* rows_ = nullptr; ///< one of those below; null at the end
    std::unique_ptr<dp::Cursor> scan_;
    RepeatedScan repeated_;
    std::optional<ArrangedRows> ordered_; ///< the rows of a scan in the plan's order
    ArrangedCursor orderedRows_;
    bool isInIndexOrder_ = false;
    GeometryResult geometry_;
    std::shared_ptr<ScanReport> report_; ///< null when nobody asks how the statement is answered
    work::Cancellation cancellation_;
};

} // namespace orvane::adaptor
