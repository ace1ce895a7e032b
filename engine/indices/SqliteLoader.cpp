#include "engine/indices/SqliteLoader.h"

#include "engine/indices/IndexSql.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orvane::engine {

namespace {

/// Rows are gathered up to this size before they are sorted and stored.
constexpr std::size_t portionSize = std::size_t(128) << 20;
constexpr std::size_t rowsPerStatement = 256;
constexpr qint64 rowsPerReport = 4096;
/// SQLite's default limit of parameters in a statement is 32766.
static_assert(rowsPerStatement * 33 < 32766, "the columns of an index are few");

QString insertSql(int index, const IndexColumns& columns, std::size_t numRows) {
    QString names;
    QString row;
    for (const qint32 column : columns) {
        names += indexColumn(column) + QLatin1Char(',');
        row += QLatin1String("?,");
    }
    QStringList rows;
    for (std::size_t i = 0; i < numRows; ++i) {
        rows.append(QLatin1Char('(') + row + QLatin1String("?)"));
    }
    return QStringLiteral("Insert Into %1(%2id) Values").arg(indexTable(index), names) +
           rows.join(QLatin1Char(','));
}

dp::SqliteStatement insertStatement(dp::SqliteDatabaseAccess& database, int index,
                                    const IndexColumns& columns, std::size_t numRows) {
    return database.query(insertSql(index, columns, numRows), dp::SqliteStatement::Use::Repeated);
}

bool isEmpty(dp::SqliteDatabaseAccess& database, int index) {
    return !database.query(QStringLiteral("Select 1 From %1 Limit 1").arg(indexTable(index))).next();
}

} // namespace

SqliteLoader::SqliteLoader(std::shared_ptr<dp::SqliteDatabaseAccess> database, int index,
                           const IndexColumns& columns, RowSorter sorter, Stored stored,
                           work::Progress* progress)
    : database_(std::move(database)), work_(database_->open(QStringLiteral("addRows"))),
      insertMany_(insertStatement(*database_, index, columns, rowsPerStatement)),
      insertOne_(insertStatement(*database_, index, columns, 1)), sorter_(std::move(sorter)),
      stored_(std::move(stored)), isCounting_(isEmpty(*database_, index)), progress_(progress) {}

SqliteLoader::~SqliteLoader() = default;

void SqliteLoader::addRow(qint64 row, std::span<const dp::Cell> values) {
    if (values.size() != sorter_.columnCount()) {
        throw std::logic_error("an index row has one value per column");
    }
    sorter_.add(row, values);
    if (++unreported_ == rowsPerReport) {
        cancellation_.check();
        report(std::exchange(unreported_, 0));
    }
    if (sorter_.size() >= portionSize) {
        storePortion();
        isCounting_ = false;
    }
}

void SqliteLoader::finish() {
    storePortion();
    work_.close();
    stored_(isCounting_ ? &counts_ : nullptr);
}

void SqliteLoader::countGroups() {
    counts_.rows = static_cast<qint64>(sorter_.rowCount());
    qint64 size = 0;
    for (std::size_t position = 0; position < sorter_.rowCount(); ++position) {
        ++size;
        if (position + 1 < sorter_.rowCount() && sorter_.isSameGroup(position, position + 1)) {
            continue;
        }
        counts_.largestGroup = std::max(counts_.largestGroup, size);
        counts_.smallestGroup = counts_.groups == 0 ? size : std::min(counts_.smallestGroup, size);
        ++counts_.groups;
        size = 0;
    }
}

void SqliteLoader::storePortion() {
    report(std::exchange(unreported_, 0));
    sorter_.sort(cancellation_);
    if (isCounting_) {
        countGroups();
    }
    const std::size_t numRows = sorter_.rowCount();
    std::size_t position = 0;
    for (; numRows - position >= rowsPerStatement; position += rowsPerStatement) {
        cancellation_.check();
        insert(insertMany_, position, rowsPerStatement);
        report(rowsPerStatement);
    }
    cancellation_.check();
    const std::size_t rest = numRows - position;
    for (; position < numRows; ++position) {
        insert(insertOne_, position, 1);
    }
    report(static_cast<qint64>(rest));
    sorter_.clear();
}

void SqliteLoader::report(qint64 rows) {
    if (progress_) {
        progress_->advance(rows);
    }
}

void SqliteLoader::insert(dp::SqliteStatement& statement, std::size_t first, std::size_t count) {
    int parameter = 0;
    for (std::size_t position = first; position < first + count; ++position) {
        for (std::size_t column = 0; column < sorter_.columnCount(); ++column) {
            statement.bindView(++parameter, sorter_.value(position, column));
        }
        statement.bind(++parameter, sorter_.row(position));
    }
    statement.run();
}

} // namespace orvane::engine
