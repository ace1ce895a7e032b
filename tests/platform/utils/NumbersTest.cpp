#include "platform/utils/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace orvane::utils;

TEST(GetRound, RoundsHalvesAsWrittenAwayFromZero) {
    struct Case {
        double value;
        int digits;
        double expected;
    };
    const Case cases[] = {
        {2.5, 0, 3},
        {-2.5, 0, -3},
        {0.49999999999999994, 0, 0},
        {1.005, 2, 1.01},
        {2.675, 2, 2.68},
        {-1.005, 2, -1.01},
        {1.004999, 2, 1},
        {8.325, 2, 8.33},
        {9.995, 2, 10},
        {0.5, 0, 1},
        {1234.5678, 3, 1234.568},
        {1234, 5, 1234},
        {1250, -2, 1300},
        {-1250, -2, -1300},
        {1249, -2, 1200},
        {49, -2, 0},
        {50, -2, 100},
        {5, -30, 0},
        {5e30, -31, 1e31},
        {1e-30, 30, 1e-30},
        {1.5e-25, 25, 2e-25},
        {1e300, 10, 1e300},
        {1e22, -22, 1e22},
        {6e22, -23, 1e23},
        {123456789012.345, 2, 123456789012.35},
        {9007199254740994.0, 3, 9007199254740994.0},
        {4503599627370497.5, 0, 4503599627370498},
        {0.1, 400, 0.1},
        {12345, -400, 0},
        {5e-324, 2, 0},
        {std::numeric_limits<double>::max(), -308, std::numeric_limits<double>::max()},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.expected, getRound(c.value, c.digits)) << c.value << " " << c.digits;
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
    struct Case {
        const char* locale;
        double value;
        const char* grouped;
        const char* plain;
    };
    const Case cases[] = {
        {"C", 1234567.25, "1,234,567.25", "1234567.25"},
        {"en_US", -1234.5, "-1,234.5", "-1234.5"},
        {"de_DE", 1234567.25, "1.234.567,25", "1234567,25"},
        {"ru_RU", 1234.5, "1\u00a0234,5", "1234,5"},
        {"ar_EG", 1234.5, "١٬٢٣٤٫٥", "١٢٣٤٫٥"},
        {"C", 0.1, "0.1", "0.1"},
        {"C", -0.0, "0", "0"},
        {"C", 1e21, "1,000,000,000,000,000,000,000", "1000000000000000000000"},
        {"C", 1e-7, "0.0000001", "0.0000001"},
        {"C", 100, "100", "100"},
    };
    for (const Case& c : cases) {
        const QLocale locale(QString::fromLatin1(c.locale));
        EXPECT_EQ(QString::fromUtf8(c.grouped), separateDouble(c.value, locale)) << c.locale;
        EXPECT_EQ(QString::fromUtf8(c.plain), toLocalizedString(c.value, locale)) << c.locale;
    }
}

TEST(NumberTexts, ThousandsStartWhereToldAndEndAtThePoint) {
    struct Case {
        const char* text;
        char point;
        int from;
        const char* expected;
    };
    const Case cases[] = {
        {"1234567", 0, 0, "1 234 567"},
        {"123", 0, 0, "123"},
        {"", 0, 0, ""},
        {"1234567.1234", '.', 0, "1 234 567.1234"},
        {"123456", '.', 0, "123 456"},
        {"-123456", 0, 0, "-123 456"},
        {"no1234", 0, 2, "no1 234"},
        {"123456", 0, 3, "123456"},
        {"12", 0, 9, "12"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(
            QString::fromLatin1(c.expected),
            separateThousands(QString::fromLatin1(c.text), QLatin1Char(c.point), QLatin1Char(' '), c.from));
    }
}

TEST(NumberTexts, ExponentsBecomePlainDigits) {
    struct Case {
        const char* locale;
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"C", "1.5e+3", "1500"},
        {"C", "1e+20", "100000000000000000000"},
        {"C", "1.2345E2", "123.45"},
        {"C", "-1.5e-3", "-0.0015"},
        {"C", "12.5", "12.5"},
        {"C", "1e0", "1"},
        {"C", "e", "e"},
        {"C", "1e", "1e"},
        {"C", "nan", "nan"},
        {"de_DE", "1,5e+3", "1500"},
        {"de_DE", "1,5e-3", "0,0015"},
        {"ar_EG", "١٫٥e+٢٠", "١٥٠٠٠٠٠٠٠٠٠٠٠٠٠٠٠٠٠٠٠"},
        {"sv_SE", "\u22121,5e\u22122", "\u22120,015"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(QString::fromUtf8(c.expected),
                  castExponentialFormat(QString::fromUtf8(c.text), QLocale(QString::fromLatin1(c.locale)),
                                        nullptr));
    }
    const auto keepLarge = [](int exponent) { return exponent > 5; };
    EXPECT_EQ(QLatin1String("1e9"), castExponentialFormat(QStringLiteral("1e9"), QLocale::c(), keepLarge));
    EXPECT_EQ(QLatin1String("1000"), castExponentialFormat(QStringLiteral("1e3"), QLocale::c(), keepLarge));
}
