#include "engine/indices/SqliteLoader.h"

#include "engine/indices/IndexSql.h"

#include <algorithm>
#include <stdexcept>

namespace orvane::engine {

namespace {

/// Rows are gathered up to this size before they are sorted and stored.
constexpr std::size_t portionSize = std::size_t(64) << 20;
constexpr std::size_t rowsBetweenChecks = 4096;

QString insertSql(int index, const IndexColumns& columns) {
    QString names;
    QString parameters;
    for (const qint32 column : columns) {
        names += indexColumn(column) + QLatin1Char(',');
        parameters += QLatin1String("?,");
    }
    return QStringLiteral("Insert Into %1(%2id) Values(%3?)").arg(indexTable(index), names, parameters);
}

bool isEmpty(dp::SqliteDatabaseAccess& database, int index) {
    return !database.query(QStringLiteral("Select 1 From %1 Limit 1").arg(indexTable(index))).next();
}

} // namespace

SqliteLoader::SqliteLoader(std::shared_ptr<dp::SqliteDatabaseAccess> database, int index,
                           const IndexColumns& columns, RowSorter sorter, Stored stored)
    : database_(std::move(database)), work_(database_->open(QStringLiteral("addRows"))),
      insert_(database_->query(insertSql(index, columns), dp::SqliteStatement::Use::Repeated)),
      sorter_(std::move(sorter)), stored_(std::move(stored)), isCounting_(isEmpty(*database_, index)) {}

SqliteLoader::~SqliteLoader() = default;

void SqliteLoader::addRow(qint64 row, std::span<const dp::Cell> values) {
    if (values.size() != sorter_.columnCount()) {
        throw std::logic_error("an index row has one value per column");
    }
    sorter_.add(row, values);
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
    sorter_.sort();
    if (isCounting_) {
        countGroups();
    }
    const int idParameter = static_cast<int>(sorter_.columnCount()) + 1;
    for (std::size_t position = 0; position < sorter_.rowCount(); ++position) {
        if (position % rowsBetweenChecks == 0 && cancellation_.isRequested()) {
            throw std::runtime_error("interrupted");
        }
        for (std::size_t column = 0; column < sorter_.columnCount(); ++column) {
            insert_.bind(static_cast<int>(column) + 1, sorter_.value(position, column));
        }
        insert_.bind(idParameter, sorter_.row(position));
        insert_.run();
    }
    sorter_.clear();
}

} // namespace orvane::engine
