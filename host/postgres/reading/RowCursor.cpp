#include "host/postgres/reading/RowCursor.h"

#include "host/postgres/conditions/ScanQuery.h"
#include "host/postgres/reading/ServerValue.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace orvane::postgres {

namespace {

/// Rows of the first batch: enough for what is looked up.
constexpr int firstBatch = 64;
constexpr int mostRows = 8192;
/// What a batch should not exceed, as far as the rows of the one before tell.
constexpr std::size_t batchBytes = std::size_t{2} << 20;

std::string newCursorName() {
    static std::atomic<std::uint64_t> last = 0;
    return "orvane_" + std::to_string(++last);
}

} // namespace

RowCursor::RowCursor(std::shared_ptr<const TableDescription> table, std::shared_ptr<Server> server,
                     std::shared_ptr<Connection> connection, const Command& query, Layout layout)
    : table_(std::move(table)), server_(std::move(server)), shared_(std::move(connection)),
      layout_(std::move(layout)), name_(newCursorName()), slots_(table_->columns.size()),
      wanted_(firstBatch) {
    for (std::size_t i = 0; i < layout_.attributes.size(); ++i) {
        const auto attribute = static_cast<std::size_t>(layout_.attributes[i]);
        slots_[attribute].column = static_cast<int>(i);
        slots_[attribute].kind = table_->columns[attribute].kind;
    }
    Command declaration = query;
    declaration.sql = "Declare " + name_ + " No Scroll Cursor For " + query.sql;
    if (shared_) {
        generation_ = shared_->generation();
        take(openShared(declaration));
    } else {
        Result first;
        lease_ = server_->start(std::array{Command{"Begin Read Only"}, declaration, fetch()}, first,
                                cancellation_, true);
        take(std::move(first));
    }
}

/// A query that fails leaves the edits before it alone.
Result RowCursor::openShared(const Command& declaration) {
    try {
        return shared_->run(std::array{Command{"Savepoint orvane_row"}, declaration, fetch(),
                                       Command{"Release Savepoint orvane_row"}},
                            cancellation_, true);
    } catch (const ServerError& error) {
        if (!error.isLost()) {
            shared_->run(std::array{Command{"Rollback To Savepoint orvane_row"},
                                    Command{"Release Savepoint orvane_row"}},
                         {});
        }
        throw;
    }
}

RowCursor::~RowCursor() {
    try {
        finish();
    } catch (const std::exception&) {
        // The connection is lost, and the cursor with it.
    }
}

Command RowCursor::fetch() const {
    return {"Fetch " + std::to_string(wanted_) + " From " + name_};
}

void RowCursor::take(Result batch) {
    batch_ = std::move(batch);
    rows_ = PQntuples(batch_.get());
    row_ = -1;
    isAtEnd_ = rows_ < wanted_;
    if (isAtEnd_) {
        finish();
    }
}

/// Batches grow while the rows are small.
void RowCursor::chooseBatch() {
    const std::size_t bytes = PQresultMemorySize(batch_.get()) / static_cast<std::size_t>(std::max(rows_, 1));
    const auto fitting = static_cast<int>(std::min<std::size_t>(batchBytes / (bytes + 1), mostRows));
    wanted_ = std::clamp(std::min(fitting, wanted_ * 4), 1, mostRows);
}

bool RowCursor::nextBatch() {
    if (isAtEnd_) {
        batch_.reset();
        return false;
    }
    if (!isReadingAhead_) {
        chooseBatch();
        connection().send(std::array{fetch()}, true);
    }
    isReadingAhead_ = false;
    take(connection().receive(cancellation_));
    if (!isAtEnd_ && !shared_) {
        chooseBatch();
        connection().send(std::array{fetch()}, true);
        isReadingAhead_ = true;
    }
    return rows_ > 0;
}

bool RowCursor::next() {
    if (++row_ >= rows_) {
        row_ = -1;
        rows_ = 0;
        if (!nextBatch()) {
            return false;
        }
        row_ = 0;
    }
    if (layout_.hasPage) {
        run_ = placeOfRow(value(static_cast<int>(layout_.attributes.size() + layout_.keySize))) >> 16;
    }
    return true;
}

/// The connection is free for others from here on; in a group only the cursor goes.
void RowCursor::finish() {
    if (shared_) {
        if (!isClosed_ && generation_ == shared_->generation() && !shared_->isLost()) {
            isClosed_ = true;
            shared_->send(std::array{Command{"Close " + name_}}, false);
        }
    } else if (lease_) {
        lease_->abandon(); // of rows that are read ahead
        if (!lease_->isLost()) {
            lease_->send(std::array{Command{"Rollback"}}, false);
        }
        lease_.release();
    }
}

dp::Cell RowCursor::cell(int attribute) {
    Slot& slot = slots_[static_cast<std::size_t>(attribute)];
    if (PQgetisnull(batch_.get(), row_, slot.column)) {
        return {};
    }
    return cellOfServerValue(slot.kind, value(slot.column), slot.memory);
}

dp::FeatureId RowCursor::featureId() {
    const auto first = static_cast<int>(layout_.attributes.size());
    switch (table_->key) {
    case RowKey::Integer:
    case RowKey::Number:
        return dp::FeatureId(QVariant(
            static_cast<qlonglong>(cellOfServerValue(ValueKind::Integer8, value(first), key_).integer())));
    case RowKey::Place: return dp::FeatureId(QVariant(static_cast<qlonglong>(placeOfRow(value(first)))));
    case RowKey::Values: break;
    }
    QString texts;
    for (std::size_t i = 0; i < layout_.keySize; ++i) {
        const std::string_view text = value(first + static_cast<int>(i));
        if (i > 0) {
            texts += QLatin1Char(keySeparator);
        }
        texts += QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    }
    return dp::FeatureId(QVariant(texts));
}

} // namespace orvane::postgres
