#include "engine/indices/SqliteLoader.h"

#include "engine/indices/IndexSql.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orvane::engine {

namespace {

/// Rows are gathered up to this size before they are sorted and stored.
constexpr std::size_t portionSize = std::size_t(128) << 20;
constexpr std::uint32_t rowsPerStatement = 256;
constexpr std::size_t rowsPerReport = 4096;
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
                           const IndexColumns& columns, std::vector<RowOrder::Key> keys,
                           std::shared_ptr<const LocaleOrder> locale, Stored stored, work::Progress* progress)
    : database_(std::move(database)), work_(database_->open(QStringLiteral("addRows"))),
      insertMany_(insertStatement(*database_, index, columns, rowsPerStatement)),
      insertOne_(insertStatement(*database_, index, columns, 1)), keys_(std::move(keys)),
      locale_(std::move(locale)), stored_(std::move(stored)), isCounting_(isEmpty(*database_, index)),
      progress_(progress) {
    restart();
}

SqliteLoader::~SqliteLoader() = default;

void SqliteLoader::restart() {
    order_.emplace(keys_, locale_);
    texts_.emplace();
    rows_.clear();
}

void SqliteLoader::addRow(qint64 row, std::span<const dp::Cell> values) {
    if (values.size() != keys_.size()) {
        throw std::logic_error("an index row has one value per column");
    }
    for (std::size_t key = 0; key < values.size(); ++key) {
        order_->add(key, values[key], *texts_);
    }
    rows_.push_back(row);
    ++rowCount_;
    if (++unreported_ == rowsPerReport) {
        cancellation_.check();
        report(std::exchange(unreported_, 0));
    }
    if (order_->bytes() + texts_->size() + rows_.size() * sizeof rows_.front() >= portionSize) {
        storePortion();
        isCounting_ = false;
    }
}

void SqliteLoader::finish() {
    storePortion();
    work_.close();
    stored_(rowCount_, isCounting_ ? std::move(groups_) : GroupCounts());
}

void SqliteLoader::countGroups() {
    groups_.assign(keys_.size(), {});
    const std::uint32_t end = order_->all().end;
    std::vector<std::uint32_t> begins(keys_.size(), 0);
    for (std::uint32_t next = 1; next <= end; ++next) {
        for (std::size_t key = next < end ? order_->firstDifference(next - 1, next) : 0; key < keys_.size();
             ++key) {
            const qint64 size = next - std::exchange(begins[key], next);
            EngineIndices::Groups& groups = groups_[key];
            groups.smallest = groups.number == 0 ? size : std::min(groups.smallest, size);
            groups.largest = std::max(groups.largest, size);
            ++groups.number;
        }
    }
}

void SqliteLoader::storePortion() {
    report(std::exchange(unreported_, 0));
    order_->arrangeInOrder(cancellation_, rows_);
    if (isCounting_) {
        countGroups();
    }
    const std::uint32_t end = order_->all().end;
    std::uint32_t place = 0;
    for (; end - place >= rowsPerStatement; place += rowsPerStatement) {
        cancellation_.check();
        insert(insertMany_, place, rowsPerStatement);
        report(rowsPerStatement);
    }
    cancellation_.check();
    const std::uint32_t rest = end - place;
    for (; place < end; ++place) {
        insert(insertOne_, place, 1);
    }
    report(rest);
    restart();
}

void SqliteLoader::report(std::size_t rows) {
    if (progress_) {
        progress_->advance(static_cast<qint64>(rows));
    }
}

void SqliteLoader::insert(dp::SqliteStatement& statement, std::uint32_t first, std::uint32_t count) {
    int parameter = 0;
    for (std::uint32_t place = first; place < first + count; ++place) {
        const std::uint32_t row = order_->row(place);
        for (std::size_t key = 0; key < keys_.size(); ++key) {
            statement.bindView(++parameter, order_->value(row, key));
        }
        statement.bind(++parameter, static_cast<qint64>(rows_[row]));
    }
    statement.run();
}

} // namespace orvane::engine
