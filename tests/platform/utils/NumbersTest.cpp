#include "platform/utils/Numbers.h"

#include "support/TextTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace orvane::utils;

namespace {

std::vector<orvane::tests::TableRow> rowsOf(const char* kind) {
    std::vector<orvane::tests::TableRow> rows;
    for (const orvane::tests::TableRow& row : orvane::tests::readTable("utils/numbers.txt")) {
        if (row.text(0) == kind) {
            rows.push_back(row);
        }
    }
    return rows;
}

} // namespace

TEST(GetRound, RoundsHalvesAsWrittenAwayFromZero) {
    for (const auto& row : rowsOf("round")) {
        EXPECT_EQ(row.number(3), getRound(row.number(1), row.fields[2].toInt())) << row.place;
    }
    EXPECT_TRUE(std::isnan(getRound(std::nan(""), 2)));
    EXPECT_EQ(std::numeric_limits<double>::infinity(), getRound(std::numeric_limits<double>::infinity(), 2));
    EXPECT_EQ(0.1, getRound(0.1, std::numeric_limits<int>::max()));
    EXPECT_EQ(0.0, getRound(0.1, std::numeric_limits<int>::min()));
}

TEST(GetRound, AgreesWithTheTextOfTheNumber) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        // A decimal of up to four places with its fifth place 5: the exact case that binary arithmetic gets
        // wrong.
        const qint64 units = static_cast<qint64>(random() % 2000000000) * 10 + 5;
        const double value = (QString::number(units) + QLatin1String("e-5")).toDouble();
        const double expected = (QString::number(units / 10 + 1) + QLatin1String("e-4")).toDouble();
        ASSERT_EQ(expected, getRound(value, 4)) << units;
        ASSERT_EQ(-expected, getRound(-value, 4)) << units;
    }
}

TEST(NumberTexts, FollowTheLocale) {
    for (const auto& row : rowsOf("text")) {
        const QLocale locale(row.fields[1]);
        EXPECT_EQ(row.text(3), separateDouble(row.number(2), locale).toStdString()) << row.place;
        EXPECT_EQ(row.text(4), toLocalizedString(row.number(2), locale).toStdString()) << row.place;
    }
}

TEST(NumberTexts, ThousandsStartWhereToldAndEndAtThePoint) {
    for (const auto& row : rowsOf("thousands")) {
        const auto& [kind, text, point, from, expected] = row.columns<5>();
        EXPECT_EQ(expected, separateThousands(text, point.isEmpty() ? QChar() : point[0], QLatin1Char(' '),
                                              from.toInt()))
            << row.place;
    }
    EXPECT_EQ(QString(), separateThousands(QString(), QChar(), QLatin1Char(' '), 0));
}
