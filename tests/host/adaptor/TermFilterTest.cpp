#include "host/adaptor/scanning/TermFilter.h"
#include "platform/dp/ValueOrder.h"

#include <orvane/engine/Collator.h>

#include <gtest/gtest.h>

#include <QLocale>

#include <sqlite3.h>

#include <cmath>
#include <limits>
#include <random>

namespace orvane::adaptor {

namespace {

using dp::Cell;
using dp::Comparison;
using dp::ScanTerm;
using dp::ScanValue;
using dp::TextCollation;

class OneCell : public dp::Cursor {
public:
    explicit OneCell(Cell cell) : cell_(cell) {}
    bool next() override { return true; }
    Cell cell(int) override { return cell_; }
    dp::FeatureId featureId() override { return {}; }

private:
    Cell cell_;
};

bool accepts(const ScanTerm& term, const ScanValue& cell) {
    TermFilter filter;
    filter.assign({&term, 1});
    OneCell cursor(dp::cellOf(cell));
    return !filter.matchesNothing() && filter.accepts(cursor);
}

/// SQLite as the judge: a connection with the collation Locale.
class Judge {
public:
    Judge() {
        sqlite3_open(":memory:", &database_);
        sqlite3_create_collation(database_, "Locale", SQLITE_UTF16, &collator_,
                                 [](void* data, int n, const void* a, int m, const void* b) {
                                     return engine::collatorCompare(*static_cast<QCollator*>(data), n, a, m,
                                                                    b);
                                 });
    }
    ~Judge() { sqlite3_close(database_); }
    Judge(const Judge&) = delete;
    Judge& operator=(const Judge&) = delete;

    bool holds(const ScanTerm& term, const ScanValue& cell) const {
        sqlite3_stmt* statement = nullptr;
        const std::string sql = std::string("Select (?1 Collate ") + collationName(term.collation) +
                                operatorText(term.comparison, term.operands.size()) + ") Is True";
        EXPECT_EQ(sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr), SQLITE_OK) << sql;
        bind(statement, 1, cell);
        for (std::size_t i = 0; i < term.operands.size(); ++i) {
            bind(statement, static_cast<int>(i) + 2, term.operands[i]);
        }
        EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
        const bool result = sqlite3_column_int(statement, 0) != 0;
        sqlite3_finalize(statement);
        return result;
    }

private:
    static const char* collationName(TextCollation collation) {
        return collation == TextCollation::Binary   ? "Binary"
               : collation == TextCollation::NoCase ? "NoCase"
                                                    : "Locale";
    }
    static std::string operatorText(Comparison comparison, std::size_t operands) {
        switch (comparison) {
        case Comparison::Equal: return " = ?2";
        case Comparison::Is: return " Is ?2";
        case Comparison::Greater: return " > ?2";
        case Comparison::LessOrEqual: return " <= ?2";
        case Comparison::Less: return " < ?2";
        case Comparison::GreaterOrEqual: return " >= ?2";
        case Comparison::NotEqual: return " <> ?2";
        case Comparison::IsNot: return " Is Not ?2";
        case Comparison::IsNull: return " Is Null";
        case Comparison::IsNotNull: return " Is Not Null";
        default: break;
        }
        std::string list = " In (";
        for (std::size_t i = 0; i < operands; ++i) {
            list += (i ? ",?" : "?") + std::to_string(i + 2);
        }
        return list + ")";
    }
    static void bind(sqlite3_stmt* statement, int position, const ScanValue& value) {
        if (const auto* integer = std::get_if<std::int64_t>(&value)) {
            sqlite3_bind_int64(statement, position, *integer);
        } else if (const auto* real = std::get_if<double>(&value)) {
            sqlite3_bind_double(statement, position, *real);
        } else if (const auto* text = std::get_if<std::string>(&value)) {
            sqlite3_bind_text(statement, position, text->data(), static_cast<int>(text->size()),
                              SQLITE_TRANSIENT);
        }
    }

    QCollator collator_ = engine::collator();
    sqlite3* database_ = nullptr;
};

const std::vector<ScanValue> numbers = {std::int64_t{0},
                                        std::int64_t{-1},
                                        std::int64_t{7},
                                        0.0,
                                        7.0,
                                        7.5,
                                        -0.5,
                                        std::numeric_limits<double>::quiet_NaN(),
                                        std::numeric_limits<double>::infinity(),
                                        -std::numeric_limits<double>::infinity(),
                                        9007199254740993.0,
                                        std::int64_t{9007199254740993},
                                        std::int64_t{9007199254740992},
                                        std::numeric_limits<std::int64_t>::max(),
                                        std::numeric_limits<std::int64_t>::min(),
                                        9223372036854775808.0,
                                        -9223372036854775808.0};

const std::vector<ScanValue> texts = {std::string(),         std::string("abc"),    std::string("ABC"),
                                      std::string("abd"),    std::string("a b"),    std::string("ab-c"),
                                      std::string("Москва"), std::string("МОСКВА"), std::string("Ёлка"),
                                      std::string("елка"),   std::string("straße"), std::string("STRASSE"),
                                      std::string("résumé"), std::string("resume"), std::string("ﬁn"),
                                      std::string("fin"),    std::string("😀"),      std::string("ccs"),
                                      std::string("cscs"),   std::string("10"),     std::string("9")};

const std::vector<Comparison> comparisons = {Comparison::Equal,    Comparison::Is,
                                             Comparison::Greater,  Comparison::LessOrEqual,
                                             Comparison::Less,     Comparison::GreaterOrEqual,
                                             Comparison::NotEqual, Comparison::IsNot,
                                             Comparison::IsNull,   Comparison::IsNotNull};

class TermFilterTest : public ::testing::Test {
protected:
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    static void compareAll(const std::vector<ScanValue>& values) {
        const Judge judge;
        std::vector<ScanValue> withNull = values;
        withNull.emplace_back();
        for (const TextCollation collation :
             {TextCollation::Binary, TextCollation::NoCase, TextCollation::Locale}) {
            for (const Comparison comparison : comparisons) {
                for (const ScanValue& cell : withNull) {
                    for (const ScanValue& operand : withNull) {
                        if (const auto* real = std::get_if<double>(&operand); real && std::isnan(*real)) {
                            continue; // SQLite hands NaN over as NULL
                        }
                        ScanTerm term{0, comparison, collation, {operand}};
                        EXPECT_EQ(accepts(term, cell), judge.holds(term, cell))
                            << "comparison " << int(comparison) << ", collation " << int(collation)
                            << ", cell " << &cell - withNull.data() << ", operand "
                            << &operand - withNull.data();
                    }
                }
            }
        }
    }
};

} // namespace

TEST_F(TermFilterTest, NumbersCompareAsInSqlite) {
    compareAll(numbers);
}

TEST_F(TermFilterTest, TextsCompareAsInSqlite) {
    for (const char* locale : {"C", "ru_RU", "de_DE", "hu_HU", "da_DK", "tr_TR"}) {
        SCOPED_TRACE(locale);
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        compareAll(texts);
    }
}

/// Lists of one kind of value are exact, mixed ones let pass what SQLite converts.
TEST_F(TermFilterTest, InListsHoldWhatTheyHoldInSqlite) {
    std::mt19937 random(1);
    std::vector<ScanValue> values = numbers;
    values.insert(values.end(), texts.begin(), texts.end());
    values.erase(values.begin() + 7); // NaN is no value of SQLite's
    const std::size_t numberCount = numbers.size() - 1;
    for (const char* locale : {"C", "ru_RU", "hu_HU"}) {
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        const Judge judge;
        int leftOut = 0;
        for (int round = 0; round < 3000; ++round) {
            const auto kind = random() % 3; // numbers, texts, both
            const std::size_t first = kind == 1 ? numberCount : 0;
            const std::size_t end = kind == 0 ? numberCount : values.size();
            const auto any = [&] {
                return random() % 20 == 0 ? ScanValue() : values[first + random() % (end - first)];
            };
            ScanTerm term{0, Comparison::In, static_cast<TextCollation>(random() % 3), {}};
            for (auto count = random() % (random() % 4 == 0 ? 50 : 5); count > 0; --count) {
                term.operands.push_back(any());
            }
            const ScanValue cell = any();
            const bool accepted = accepts(term, cell);
            leftOut += !accepted;
            EXPECT_TRUE(accepted == judge.holds(term, cell) || (accepted && kind == 2)) << "round " << round;
        }
        EXPECT_GT(leftOut, 1000); // it has to leave rows out to be of use
    }
}

TEST_F(TermFilterTest, PairsOfDifferentKindsAreLeftToSqlite) {
    const ScanValue five = std::int64_t{5};
    EXPECT_TRUE(accepts({0, Comparison::Equal, TextCollation::Binary, {std::string("5")}}, five));
    EXPECT_TRUE(accepts({0, Comparison::Less, TextCollation::Binary, {five}}, std::string("05")));
}

} // namespace orvane::adaptor
