#pragma once

#include "host/adaptor/indices/IndexUse.h"

#include "platform/dp/TableSchema.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::adaptor {

/// One condition of a scan as the planner saw it.
struct PlannedCondition {
    int attribute = 0;
    QString column;
    QString comparison; ///< with the pattern if it is one: ">", "Like 'мос%'"
    bool isPattern = false;
    IndexUse::Outcome index = IndexUse::Outcome::NotAsked; ///< why no attribute index can answer it
    bool isForSource = false;                              ///< the provider leaves rows out by it

    QString text() const { return column + QLatin1Char(' ') + comparison; }
};

/// What the planner decided about one scan.
struct PlannedScan {
    QString table;
    double tableRows = 0; ///< 0 when the provider does not tell
    double expectedRows = 0;
    std::vector<PlannedCondition> conditions;
};

/// How the rows of a scan were found.
enum class Access : std::uint8_t {
    WholeTable,
    SourceFilter,
    RowNumber,
    AttributeIndex,
    SourceIndex, ///< of the file
    SpatialIndex,
    SourceSpatialIndex, ///< of the file
    SourceBoxes,        ///< those of the geometries in memory
    Relation,
    Memory ///< rows kept for a scan that is made again and again
};
constexpr std::size_t accessCount = 10;

/// How one table of a statement was answered. The inner table of a join is scanned many times.
struct ScanReport {
    PlannedScan planned;

    std::array<std::int64_t, accessCount>
        scans{};                 ///< by access; one that is known to be empty does not count
    std::int64_t emptyScans = 0; ///< no row could match, so none was read
    std::int64_t rowsRead = 0;
    std::int64_t rowsPassed = 0; ///< handed to SQLite
    bool isArranged = false;     ///< for Group By or Distinct, so that SQLite need not sort
    IndexUse lastIndexUse;
    std::vector<int> indexAttributes; ///< of the index asked last
    QStringList indexColumns;         ///< their names
    QStringList sourceIndexColumns;   ///< that an index of the file finds
    std::optional<double> makingMs;   ///< of the attribute index or R-tree, when it was made meanwhile

    /// Takes down what came of asking for an attribute index of a table with that schema.
    void take(const IndexUse& use, const dp::TableSchema& schema);
    std::int64_t& scansBy(Access access) { return scans[static_cast<std::size_t>(access)]; }
    std::int64_t scansBy(Access access) const { return scans[static_cast<std::size_t>(access)]; }
};

/// Takes down how the scans of a statement are planned and carried out, on the thread that makes it, while it
/// lives. Plans are numbered in the order in which SQLite asks for them: preparing the same statement twice
/// gives the same numbers.
class ScanRecorder {
public:
    ScanRecorder();
    ~ScanRecorder();
    ScanRecorder(const ScanRecorder&) = delete;
    ScanRecorder& operator=(const ScanRecorder&) = delete;

    /// The innermost recorder of this thread; null when nobody wants to know.
    static ScanRecorder* current();

    /// Numbers from 1 again. What has been taken down stays until its number is given anew.
    void restart();
    /// Takes a plan down and returns its number.
    std::uint64_t add(PlannedScan planned);
    /// Null for a number that was not given.
    std::shared_ptr<ScanReport> report(std::uint64_t number) const;

private:
    ScanRecorder* outer_;
    std::uint64_t lastNumber_ = 0;
    std::map<std::uint64_t, std::shared_ptr<ScanReport>> reports_;
};

} // namespace orvane::adaptor
