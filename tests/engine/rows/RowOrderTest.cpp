#include <orvane/engine/rows/RowOrder.h>

#include "support/DefaultLocale.h"
#include "support/RandomText.h"

#include "platform/dp/ValueOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

namespace orvane::engine {

namespace {

using dp::Cell;
using dp::CellType;
using dp::TextCollation;

/// The order that the mechanism has to find: NULL, numbers, texts under the collation, bytes.
int compare(const Cell& a, const Cell& b, TextCollation collation) {
    const auto kind = [](const Cell& cell) {
        return isNull(cell) ? 0 : isNumber(cell) ? 1 : cell.type() == CellType::Text ? 2 : 3;
    };
    if (kind(a) != kind(b) || kind(a) == 0) {
        return kind(a) - kind(b);
    }
    if (isNumber(a)) {
        return compareNumbers(a, b);
    }
    return dp::compareTexts(a.view(), b.view(), kind(a) == 3 ? TextCollation::Binary : collation,
                            LocaleOrder::current().get());
}

/// Values of every kind; texts that locales order in ways of their own, often with a long common beginning.
class Values {
public:
    explicit Values(unsigned seed) : random_(seed) {
        using namespace std::string_view_literals;
        for (int i = 0; i < 4000; ++i) {
            const char* start = i % 3 == 0 ? "Улица Ёлочная № " : i % 3 == 1 ? "" : "a long street, house ";
            texts_.push_back(start + tests::randomText(pieces_, random_, 9));
        }
        texts_.emplace_back("\0\1\0"sv);
        texts_.emplace_back("\xf0\x28 no UTF-8");
    }

    Cell any() {
        switch (random_() % 10) {
        case 0: return {};
        case 1: return Cell::ofInteger(static_cast<int>(random_() % 5) - 2);
        case 2: return Cell::ofReal(static_cast<double>(random_() % 9) / 2 - 2);
        case 3: return numbers_[random_() % std::size(numbers_)];
        case 4: return Cell::ofBytes(text());
        default: return Cell::ofText(text());
        }
    }

    /// The value of a row: of a column that has integers alone in its first rows.
    Cell ofRow(int row, int integerRows) {
        return row >= integerRows ? any() : row % 50 == 0 ? Cell() : Cell::ofInteger(integer());
    }

private:
    std::int64_t integer() {
        const auto value = static_cast<std::int64_t>(random_());
        return value % 3 == 0 ? value % 200 - 100 : value % 3 == 1 ? -value : value << 30;
    }
    std::string_view text() { return texts_[random_() % texts_.size()]; }

    std::mt19937 random_;
    std::vector<std::string> texts_;
    const std::vector<std::string> pieces_ =
        tests::pieces("a|A|b|c|ch|e|é|z|Z|ä|å|ö|ß|o'|l|ll|ı|I|ё|е|Е|й|и|я|ї|α|Ω|漢|字|😀|\u0301|-| |1|2|10");
    const Cell numbers_[8] = {Cell::ofInteger(std::numeric_limits<std::int64_t>::max()),
                              Cell::ofInteger(std::numeric_limits<std::int64_t>::max() - 1),
                              Cell::ofReal(9223372036854775808.0),
                              Cell::ofInteger(9007199254740993),
                              Cell::ofReal(9007199254740992.0),
                              Cell::ofReal(-0.0),
                              Cell::ofReal(-std::numeric_limits<double>::infinity()),
                              Cell::ofReal(std::nan(""))};
};

class RowOrderTest : public testing::TestWithParam<const char*> {
protected:
    struct Case {
        TextCollation collation;
        int integerRows; ///< the first ones
    };
    static std::vector<Case> casesOf(int rows) {
        std::vector<Case> cases{{TextCollation::Locale, 0}, {TextCollation::Locale, rows / 2}};
        if (GetParam() == std::string_view("C")) {
            cases.insert(cases.end(), {{TextCollation::NoCase, 0},
                                       {TextCollation::Binary, 0},
                                       {TextCollation::Binary, rows / 2},
                                       {TextCollation::Binary, rows}});
        }
        return cases;
    }
};

TEST_P(RowOrderTest, PutsRowsInTheOrderOfTheirValues) {
    const tests::DefaultLocale guard(GetParam());
    for (const auto& [collation, integerRows] : casesOf(6000)) {
        Values values(3);
        const std::vector<RowOrder::Key> keys = {{collation, true}, {collation, false}};
        RowOrder order(keys, LocaleOrder::current());
        ByteArena memory;
        std::vector<std::vector<Cell>> rows;
        for (int row = 0; row < 6000; ++row) {
            rows.push_back({values.ofRow(row, integerRows), values.ofRow(row, integerRows)});
            for (std::size_t key = 0; key < keys.size(); ++key) {
                order.add(key, rows.back()[key], memory);
            }
        }
        order.arrangeInOrder({});
        std::vector<std::uint32_t> expected(rows.size());
        std::iota(expected.begin(), expected.end(), 0U);
        const auto firstDifference = [&](std::uint32_t a, std::uint32_t b) {
            std::size_t key = 0;
            while (key < keys.size() && compare(rows[a][key], rows[b][key], collation) == 0) {
                ++key;
            }
            return key;
        };
        std::stable_sort(expected.begin(), expected.end(), [&](std::uint32_t a, std::uint32_t b) {
            const std::size_t key = firstDifference(a, b);
            return key < keys.size() &&
                   compare(rows[a][key], rows[b][key], collation) * (keys[key].isDescending ? -1 : 1) < 0;
        });
        for (std::uint32_t place = 0; place < expected.size(); ++place) {
            ASSERT_EQ(order.row(place), expected[place]) << GetParam() << " place " << place;
            if (place > 0) {
                ASSERT_EQ(order.firstDifference(place - 1, place),
                          firstDifference(expected[place - 1], expected[place]));
            }
        }
    }
}

TEST_P(RowOrderTest, FindsWhatIsEqual) {
    const tests::DefaultLocale guard(GetParam());
    for (const auto& [collation, integerRows] : casesOf(1000)) {
        Values values(4);
        RowOrder order({{collation, false}}, LocaleOrder::current());
        ByteArena memory;
        std::vector<Cell> rows;
        for (int row = 0; row < 1000; ++row) {
            rows.push_back(values.ofRow(row, integerRows));
            order.add(0, rows.back(), memory);
        }
        EXPECT_EQ(order.arrangeForLookups({}), 0U);
        for (int i = 0; i < 100; ++i) {
            const Cell wanted = i % 2 == 0 ? values.any() : rows[static_cast<std::size_t>(i) * 9];
            const RowOrder::Range found = order.find(wanted);
            const auto count = std::count_if(rows.begin(), rows.end(), [&](const Cell& cell) {
                return compare(cell, wanted, collation) == 0;
            });
            EXPECT_EQ(found.end - found.begin, count);
            for (std::uint32_t place = found.begin; place < found.end; ++place) {
                EXPECT_EQ(compare(rows[order.row(place)], wanted, collation), 0);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Locales, RowOrderTest, testing::Values("C", "ru_RU", "cs_CZ", "tr_TR", "zh_CN"));

TEST(RowOrder, OrdersEqualRowsByTheirIdentifiersAndStopsWhenCancelled) {
    RowOrder order({{}}, nullptr);
    ByteArena memory;
    for (const char* text : {"b", "a", "b", "a", "a"}) {
        order.add(0, Cell::ofText(text), memory);
    }
    order.arrangeInOrder({}, std::vector<std::int64_t>{5, 9, 3, 1, 4});
    std::vector<std::uint32_t> rows;
    for (std::uint32_t place = 0; place < 5; ++place) {
        rows.push_back(order.row(place));
    }
    EXPECT_EQ(rows, (std::vector<std::uint32_t>{3, 4, 1, 2, 0}));
    EXPECT_EQ(order.lastGroup(), 3U);
    const work::Cancellation cancellation;
    work::Cancellation::cancelAll();
    EXPECT_THROW(order.arrangeInOrder(cancellation), work::Cancelled);
}

} // namespace

} // namespace orvane::engine
