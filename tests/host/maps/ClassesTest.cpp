#include "host/maps/classes/Classes.h"

#include <gmock/gmock.h>

#include <cmath>

namespace orvane::maps {
namespace {

using testing::ElementsAreArray;

TEST(Breaks, areTheRoundestNumbersThatFit) {
    struct Case {
        double least, greatest, expected;
    };
    for (const Case& each : {Case{3.1, 4.2, 4},
                             {99, 101, 100},
                             {-5, 3, 0},
                             {0.0123, 0.0131, 0.013},
                             {-4.2, -3.1, -4},
                             {7, 7, 7},
                             {1234567, 1360000, 1300000},
                             {4.6e9, 5.2e9, 5e9},
                             {1e-9, 1.9e-9, 1e-9}}) {
        EXPECT_DOUBLE_EQ(roundestWithin(each.least, each.greatest), each.expected);
    }
}

TEST(Breaks, divideValuesByEachMethod) {
    std::vector<double> hundred;
    for (int i = 0; i <= 100; ++i) {
        hundred.push_back(i);
    }
    std::vector<double> skewed = hundred;
    skewed.push_back(10000);
    const std::vector<double> heaps{1, 1.5, 2, 50, 51, 52, 900, 905};
    struct Case {
        std::vector<double> values;
        ClassMethod method;
        int classes;
        std::vector<double> expected;
    };
    const std::vector<Case> cases{{hundred, ClassMethod::Quantiles, 4, {25, 50, 75}},
                                  {hundred, ClassMethod::EqualIntervals, 5, {20, 40, 60, 80}},
                                  {skewed, ClassMethod::Quantiles, 2, {50}},
                                  {skewed, ClassMethod::EqualIntervals, 2, {5000}},
                                  {heaps, ClassMethod::NaturalBreaks, 3, {50, 500}},
                                  {{3, 3, 3}, ClassMethod::Quantiles, 5, {}},
                                  {{}, ClassMethod::NaturalBreaks, 5, {}},
                                  {{1, 2}, ClassMethod::NaturalBreaks, 5, {2}},
                                  {{0, 0, 0, 0, 0, 0, 0, 0, 0, 7}, ClassMethod::Quantiles, 5, {7}}};
    for (const Case& each : cases) {
        const auto breaks = classBreaks(each.values, each.method, each.classes);
        ASSERT_EQ(breaks.size(), each.expected.size()) << testing::PrintToString(breaks);
        for (std::size_t i = 0; i < breaks.size(); ++i) {
            EXPECT_NEAR(breaks[i], each.expected[i], std::abs(0.05 * each.expected[i]));
        }
    }
}

std::vector<QString> titles(const Classes& classes) {
    std::vector<QString> all;
    for (const auto& each : classes.classes()) {
        all.push_back(each.title);
    }
    return all;
}

TEST(Classes, putNumbersOnTheSideOfTheirBreak) {
    ValueSummary values;
    for (int i = -40; i <= 60; ++i) {
        values.add(Value::ofNumber(i));
    }
    values.add({});
    const Classes classes = Classes::of(values, {ClassMethod::EqualIntervals, 5, true});
    EXPECT_THAT(titles(classes), ElementsAreArray({QStringLiteral("< -20"), QStringLiteral("-20 – 0"),
                                                   QStringLiteral("0 – 20"), QStringLiteral("20 – 40"),
                                                   QStringLiteral("≥ 40"), QStringLiteral("нет данных")}));
    EXPECT_EQ(classes.classOf(Value::ofNumber(-0.001)), 1);
    EXPECT_EQ(classes.classOf(Value::ofNumber(0)), 2);
    EXPECT_EQ(classes.classOf(Value::ofNumber(1e300)), 4);
    EXPECT_EQ(classes.classOf({}), 5);
    EXPECT_EQ(classes.classOf(Value::ofNumber(NAN)), 5);
    EXPECT_EQ(classes.classOf(Value::ofText("x")), -1);
}

TEST(Classes, giveColoursToTheMostFrequentTexts) {
    ValueSummary values;
    for (int i = 0; i < 12; ++i) {
        const std::string text(1, static_cast<char>('a' + i));
        for (int k = 0; k <= i; ++k) {
            values.add(Value::ofText(text));
        }
    }
    values.add(Value::ofText("\xFF\x1B[2J")); // is seen, not obeyed
    const Classes classes = Classes::of(values, {});
    ASSERT_EQ(classes.classes().size(), 9U);
    EXPECT_EQ(classes.classes().front().title, QStringLiteral("e"));
    EXPECT_EQ(classes.classes().back().title, QStringLiteral("прочие"));
    EXPECT_EQ(classes.classOf(Value::ofText("l")), 7);
    EXPECT_EQ(classes.classOf(Value::ofText("a")), 8);
    EXPECT_TRUE(Classes::of(ValueSummary(), {}).isEmpty());
}

TEST(Classes, haveColoursThatAreToldApart) {
    for (int count = 2; count <= 9; ++count) {
        ValueSummary values;
        for (int i = 0; i < 1000; ++i) {
            values.add(Value::ofNumber(i));
        }
        const Classes classes = Classes::of(values, {ClassMethod::EqualIntervals, count, count % 2 == 0});
        for (std::size_t i = 1; i < classes.classes().size(); ++i) {
            // Lightness alone tells neighbours apart.
            EXPECT_GT(classes.classes()[i - 1].colour.toHsl().lightness() * 1.0 + 3,
                      classes.classes()[i].colour.toHsl().lightness());
            EXPECT_GT(qGray(classes.classes()[i - 1].colour.rgb()),
                      qGray(classes.classes()[i].colour.rgb()) + 5);
        }
    }
}

} // namespace
} // namespace orvane::maps
