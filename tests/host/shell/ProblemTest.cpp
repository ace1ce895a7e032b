#include "host/shell/messages/Problem.h"
#include "host/shell/messages/NearestName.h"

#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

TEST(Problem, isUnderlinedInItsLine) {
    const Problem problem{QStringLiteral("нет столбца"), TextPlace{2, 8, 4}};
    EXPECT_EQ(describe(problem, {QStringLiteral("q.sql"), "-- первая\nSelect имяя From t\n"}),
              "orvane: q.sql: строка 2, столбец 8: нет столбца\n"
              "  Select имяя From t\n"
              "         ^^^^\n");
}

TEST(Problem, isUnderlinedByDisplayWidth) {
    const struct {
        const char* line; ///< with the place at the sixth character
        const char* shown;
    } cases[] = {{"'東京'\t?", "  '東京' ?\n         ^\n"},
                 {"\u202E\x1B[2K?", "  <U+202E>␛[2K?\n              ^\n"},
                 {"\xFF\u009BЖ\x07Ж?", "  \uFFFD<U+009B>Ж␇Ж?\n              ^\n"},
                 {"12345\u2066", "  12345<U+2066>\n       ^^^^^^^^\n"}};
    for (const auto& [line, shown] : cases) {
        EXPECT_EQ(describe({QStringLiteral("x\n\u202E"), TextPlace{1, 6, 1}}, {QString(), line}),
                  std::string("orvane: строка 1, столбец 6: x␊<U+202E>\n") + shown);
    }
}

TEST(Problem, atTheEndOfTheTextStillHasAMark) {
    const Problem problem{QStringLiteral("x"), TextPlace{1, 7, 1}};
    EXPECT_EQ(describe(problem, {QString(), "Select"}),
              "orvane: строка 1, столбец 7: x\n  Select\n        ^\n");
}

TEST(Problem, showsThePartOfALongLineAroundThePlace) {
    const std::string line = std::string(500, 'a') + "WORD" + std::string(500, 'b');
    const std::string text = describe({QStringLiteral("x"), TextPlace{1, 501, 4}}, {QString(), line});
    const std::size_t lineStart = text.find('\n') + 1;
    const std::size_t markStart = text.find('\n', lineStart) + 1;
    const std::string shown = text.substr(lineStart, markStart - lineStart);
    EXPECT_LT(shown.size(), 120U);
    EXPECT_NE(shown.find("WORD"), std::string::npos);
    EXPECT_EQ(text.find("^^^^", markStart) - markStart + std::string("…").size() - 1, shown.find("WORD"));
}

TEST(Problem, ofALaterStatementCountsFromItsStart) {
    const TextPlace first = placeInText({1, 8, 3}, {4, 11, 1});
    EXPECT_EQ(first.line, 4);
    EXPECT_EQ(first.column, 18);
    const TextPlace second = placeInText({2, 8, 3}, {4, 11, 1});
    EXPECT_EQ(second.line, 5);
    EXPECT_EQ(second.column, 8);
}

TEST(NearestName, forgivesAThirdOfTheLettersOrTheRestOfTheName) {
    const QStringList known{QStringLiteral("cities"), QStringLiteral("countries"),
                            QStringLiteral("население"), QStringLiteral("id")};
    const std::pair<const char*, const char*> cases[] = {{"citeis", "cities"},
                                                         {"CITEES", "cities"},
                                                         {"contries", "countries"},
                                                         {"citys", "cities"},
                                                         {"насиление", "население"},
                                                         {"roads", ""},
                                                         {"countr", "countries"},
                                                         {"насе", "население"},
                                                         {"ci", ""},
                                                         {"di", "id"},
                                                         {"x", ""},
                                                         {"", ""}};
    for (const auto& [word, expected] : cases) {
        EXPECT_EQ(nearestName(QString::fromUtf8(word), known), QString::fromUtf8(expected)) << word;
    }
}

} // namespace
} // namespace orvane::shell
