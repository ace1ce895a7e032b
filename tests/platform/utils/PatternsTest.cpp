#include "platform/utils/Patterns.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

bool matches(const QString& expression, const QString& text) {
    const QRegularExpression regular(expression, QRegularExpression::CaseInsensitiveOption);
    EXPECT_TRUE(regular.isValid()) << expression.toStdString();
    return regular.match(text).hasMatch();
}

bool glob(const char* pattern, const char* text) {
    return matches(orvane::utils::globToRegular(QString::fromUtf8(pattern)), QString::fromUtf8(text));
}

bool like(const char* pattern, const char* text, QChar escape = {}) {
    return matches(orvane::utils::likeToRegular(QString::fromUtf8(pattern), escape), QString::fromUtf8(text));
}

} // namespace

TEST(Patterns, Glob) {
    struct Case {
        const char* pattern;
        const char* text;
        bool expected;
    };
    const Case cases[] = {
        {"", "", true},           {"", "a", false},
        {"*", "", true},          {"*", "a\nb", true},
        {"?", "\n", true},        {"?", "", false},
        {"?", "😀", true},         {"a?c", "ABC", true},
        {"м*а", "МОСКВА", true},  {"м*а", "Москва\n", false},
        {"a*a", "a", false},      {"a*a", "aa", true},
        {"*b*", "abc", true},     {"a*b*c", "aXbXbXc", true},
        {"*ab", "aab", true},     {"*?b", "b", false},
        {"[abc]", "B", true},     {"[^abc]", "b", false},
        {"[^abc]", "d", true},    {"[^abc]", "", false},
        {"[а-я]*", "Ёж", false},  {"[а-я]*", "Жук", true},
        {"[]]", "]", true},       {"[^]]", "]", false},
        {"[]-]", "-", true},      {"[a-]", "-", true},
        {"[-a]", "-", true},      {"[a-c-e]", "-", true},
        {"[a-c-e]", "d", false},  {"[z-a]", "b", false},
        {"[^z-a]", "b", true},    {"[abc", "a", false},
        {"[", "[", false},        {"[[]", "[", true},
        {"[\\d]", "5", false},    {"[\\d]", "\\", true},
        {"[😀-😂]", "😁", true},     {"a.c", "abc", false},
        {"(a|b)", "(A|B)", true}, {"[!a]", "!", true},
        {"a\\*", "a\\bc", true},  {"{2}", "{2}", true},
        {"\\E*", "\\Ex", true},   {"[[:alpha:]]", "a]", true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.expected, glob(c.pattern, c.text)) << c.pattern << " | " << c.text;
    }
}

TEST(Patterns, Like) {
    struct Case {
        const char* pattern;
        const char* text;
        char escape;
        bool expected;
    };
    const Case cases[] = {
        {"a%", "ABC", 0, true},
        {"мос%", "Москва", 0, true},
        {"%ква", "МОСКВА", 0, true},
        {"_", "😀", 0, true},
        {"__", "😀", 0, false},
        {"%", "", 0, true},
        {"_%", "", 0, false},
        {"a", "a\n", 0, false},
        {"a!%", "a%", '!', true},
        {"a!%", "ab", '!', false},
        {"a!!b", "a!b", '!', true},
        {"a!", "a", '!', false},
        {"a!", "a!", '!', false},
        {"%%%b", "ab", '%', false},
        {"%%%b", "%%b", '%', false},
        {"%%b", "%b", '%', true},
        {"a*", "a*", 0, true},
        {"[a]", "a", 0, false},
        {"straße", "STRASSE", 0, false},
        {"%a%b%", "xbxa", 0, false},
        {"%a_c%", "abdabc", 0, true},
        {"a\\%", "a\\bc", 0, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.expected, like(c.pattern, c.text, QLatin1Char(c.escape))) << c.pattern << " | " << c.text;
    }
}

TEST(Patterns, ManyRunsOverALongTextTakeNoTime) {
    const QString text(100000, QLatin1Char('a'));
    QElapsedTimer timer;
    timer.start();
    for (const char* pattern :
         {"%a%a%a%a%b", "%a%a%a%a%a%a%a%a%b%", "a%aab%", "%_a_%_a_%b", "%aaaaaaaaaaaaaaaab"}) {
        EXPECT_FALSE(matches(orvane::utils::likeToRegular(QString::fromLatin1(pattern), {}), text))
            << pattern;
    }
    EXPECT_TRUE(matches(orvane::utils::likeToRegular(QStringLiteral("%a%a%a%a%"), {}), text));
    EXPECT_TRUE(matches(orvane::utils::likeToRegular(QStringLiteral("%a%a%a%a"), {}), text));
    EXPECT_LT(timer.elapsed(), 2000);
}
