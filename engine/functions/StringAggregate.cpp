#include <orvane/engine/functions/Aggregates.h>

#include "Barrier.h"
#include "GroupState.h"
#include "PreparedArgument.h"
#include "StatementOrder.h"
#include "TextArguments.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/rows/RowOrder.h>

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::engine {

namespace {

std::string_view textOf(sqlite3_value* value) {
    const dp::Cell cell = cellOf(value);
    return cell.type() == dp::CellType::Text ? cell.view() : std::string_view();
}

/// How one key is ordered. NULL goes where the direction does not lead it by a key of its own.
struct Direction {
    RowOrder::Key key;
    bool movesNulls = false;

    explicit Direction(std::string_view words) {
        const auto says = [words](std::string_view word) {
            return words.find(word) != std::string_view::npos;
        };
        key.isDescending = says("desc");
        key.collation = says("binary")   ? dp::TextCollation::Binary
                        : says("nocase") ? dp::TextCollation::NoCase
                                         : dp::TextCollation::Locale;
        movesNulls = says(key.isDescending ? "nulls first" : "nulls last");
    }
};

/// The texts of a group in the order in which they came, and what orders them.
class Texts {
public:
    void begin(std::span<sqlite3_value*> arguments, const std::shared_ptr<const LocaleOrder>& locale) {
        hasBegun_ = true;
        separator_ = arguments.size() > 1 ? toText(arguments[1]) : ",";
        if (arguments.size() > 2 && textOf(arguments[2]) == "distinct") {
            distinct_.emplace(dp::TextCollation::Locale, locale);
        }
        std::vector<RowOrder::Key> keys;
        for (std::size_t i = firstKey; i + 1 < arguments.size(); i += 2) {
            directions_.emplace_back(textOf(arguments[i + 1]));
            if (directions_.back().movesNulls) {
                keys.push_back({dp::TextCollation::Binary, directions_.back().key.isDescending});
            }
            keys.push_back(directions_.back().key);
        }
        if (!keys.empty()) {
            order_.emplace(keys, locale);
        }
    }
    bool hasBegun() const { return hasBegun_; }

    void add(std::span<sqlite3_value*> arguments) {
        std::size_t key = 0;
        for (std::size_t i = 0; i < directions_.size(); ++i) {
            const dp::Cell cell = cellOf(arguments[firstKey + 2 * i]);
            if (directions_[i].movesNulls) {
                order_->add(key++, dp::Cell::ofInteger(cell.isNull() ? 1 : 0), memory_);
            }
            order_->add(key++, cell, memory_);
        }
        texts_ += toText(arguments[0]);
        ends_.push_back(texts_.size());
        if (distinct_) {
            codes_.push_back(distinct_->add(dp::Cell::ofText(text(ends_.size() - 1)), memory_));
        }
    }
    /// Bytes of the result, at the most.
    std::size_t size() const { return texts_.size() + ends_.size() * separator_.size(); }

    std::string joined() {
        cancellation_.check();
        if (order_) {
            order_->arrangeInOrder(cancellation_);
        }
        if (distinct_) {
            distinct_->finishForLookups(cancellation_);
        }
        std::vector<bool> isTaken(distinct_ ? distinct_->rankEnd() : 0);
        std::string all;
        all.reserve(size());
        bool isFirst = true;
        for (std::uint32_t place = 0; place < ends_.size(); ++place) {
            const std::uint32_t row = order_ ? order_->row(place) : place;
            if (distinct_ && isTaken[distinct_->rank(codes_[row])]) {
                continue;
            }
            if (distinct_) {
                isTaken[distinct_->rank(codes_[row])] = true;
            }
            all += std::exchange(isFirst, false) ? "" : separator_;
            all += text(row);
        }
        return all;
    }

private:
    static constexpr std::size_t firstKey = 3;

    static std::string toText(sqlite3_value* value) {
        const auto* const begin = reinterpret_cast<const char*>(utf8View(value));
        return begin ? std::string(begin, static_cast<std::size_t>(sqlite3_value_bytes(value)))
                     : std::string();
    }
    std::string_view text(std::size_t row) const {
        const std::size_t begin = row == 0 ? 0 : ends_[row - 1];
        return std::string_view(texts_).substr(begin, ends_[row] - begin);
    }

    bool hasBegun_ = false;
    std::string separator_;
    std::string texts_; ///< one behind the other
    std::vector<std::size_t> ends_;
    std::vector<Direction> directions_;
    std::optional<RowOrder> order_;
    std::optional<ValueRanks> distinct_;
    std::vector<ValueRanks::Code> codes_; ///< of the texts, where repeated ones are left out
    ByteArena memory_;
    const work::Cancellation cancellation_;
};

} // namespace

void StringAgg::step(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        if (count == 0 || (count > 3 && count % 2 == 0)) {
            throw std::runtime_error("wrong number of arguments to function String_Agg()");
        }
        if (isNull(values[0])) {
            return;
        }
        auto& texts = groupOf<Texts>(context);
        const std::span<sqlite3_value*> arguments(values, values + count);
        if (!texts.hasBegun()) {
            texts.begin(arguments, ofStatement<StatementOrder>(context).locale());
        }
        texts.add(arguments);
        const int longest = sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LENGTH, -1);
        if (texts.size() > static_cast<std::size_t>(longest)) {
            sqlite3_result_error_toobig(context);
        }
    });
}

void StringAgg::final(sqlite3_context* context) {
    barrier(context, [&] {
        if (const auto texts = finishedGroup<Texts>(context)) {
            const std::string all = texts->joined();
            sqlite3_result_text64(context, all.data(), all.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        }
    });
}

} // namespace orvane::engine
