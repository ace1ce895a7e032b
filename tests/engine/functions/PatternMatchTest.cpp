#include "SqlFunctions.h"

#include "support/PatternExpression.h"
#include "support/RandomText.h"
#include "support/TextTable.h"

#include "platform/dp/SqliteDatabaseAccess.h"
#include <orvane/engine/functions/PatternMatch.h>

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <ctime>
#include <random>

using orvane::engine::PatternMatch;
using namespace orvane::tests;

namespace {

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

bool like(const std::string& pattern, const std::string& text, QChar escape = {}) {
    return PatternMatch::like(bytes(pattern), escape.unicode()).matches(bytes(text));
}

bool glob(const std::string& pattern, const std::string& text) {
    return PatternMatch::glob(bytes(pattern)).matches(bytes(text));
}

bool matches(const QRegularExpression& expression, const std::string& text) {
    return expression.match(QString::fromStdString(text)).hasMatch();
}

bool matchesLetter(const QString& letter, const std::string& text) {
    return matches(QRegularExpression(letter, QRegularExpression::CaseInsensitiveOption), text);
}

/// SQLite's own LIKE (which folds ASCII) or GLOB (which folds nothing).
class BuiltIn {
public:
    explicit BuiltIn(const char* call)
        : statement_(database_.query(QLatin1String("Select ") + QLatin1String(call))) {}
    bool operator()(const std::string& pattern, const std::string& text) {
        statement_.reset();
        statement_.bind(1, std::string_view(pattern));
        statement_.bind(2, std::string_view(text));
        return statement_.next() && statement_.integer(0) != 0;
    }

private:
    orvane::dp::SqliteDatabaseAccess database_{QStringLiteral(":memory:")};
    orvane::dp::SqliteStatement statement_;
};

} // namespace

TEST(PatternMatch, MatchesWhatTheTableSays) {
    for (const TableRow& row : readTable("functions/patterns.txt")) {
        const auto& [kind, pattern, text, escape, expected] = row.columns<5>();
        const bool matched = kind == QLatin1String("like") ? like(pattern.toStdString(), text.toStdString(),
                                                                  escape.isEmpty() ? QChar() : escape[0])
                                                           : glob(pattern.toStdString(), text.toStdString());
        EXPECT_EQ(matched, expected == QLatin1String("1")) << row.place;
    }
}

TEST(PatternMatch, AgreesWithTheRegularExpressions) {
    const auto texts =
        pieces("a|A|b|k|K|\u212A|s|ſ|ß|ẞ|i|I|İ|ı|ж|Ж|σ|ς|Σ|😀|\U00010428|\U00010400|-|]|^|\n|!");
    const auto likes = pieces("a|K|ſ|Ж|ς|😀|\U00010400|%|%|_|!|[|*|i|.");
    const auto globs = pieces("a|k|S|Ж|σ|😀|*|*|?|[|]|^|-|[a-ж]|[^k]|[K-]|[!]");
    // Ill-formed bytes stand for U+FFFD, each for one.
    const auto broken = pieces("\xD0|\xBF|\xF4\x90|\xED\xA0\x80|\xF8|ж|a|%|_|*|[|]|\xEF\xBF\xBD");
    std::mt19937 random(11);
    int matched = 0;
    for (int round = 0; round < 20000; ++round) {
        const bool isBroken = round % 4 == 0;
        const std::string text = randomText(isBroken ? broken : texts, random, 6);
        const std::string likePattern = randomText(isBroken ? broken : likes, random, 5);
        const std::string globPattern = randomText(isBroken ? broken : globs, random, 5);
        const QChar escape = round % 2 == 0 ? QChar() : QLatin1Char('!');
        const bool expectedLike =
            matches(PatternExpression::like(QString::fromStdString(likePattern), escape.unicode()), text);
        const bool expectedGlob = matches(PatternExpression::glob(QString::fromStdString(globPattern)), text);
        matched += expectedLike + expectedGlob;
        ASSERT_EQ(expectedLike, like(likePattern, text, escape))
            << likePattern << " | " << text << " | " << escape.unicode();
        ASSERT_EQ(expectedGlob, glob(globPattern, text)) << globPattern << " | " << text;
    }
    EXPECT_GT(matched, 1000);
}

TEST(PatternMatch, AgreesWithSqliteOnAscii) {
    const auto ascii = pieces("a|b|c|d|0|-|]|[|^|*|?|%|_|!|.");
    const auto wild = pieces("*|?|%|_|[|[a-c]|[c-a]|[^b]|[]a]|a|b|]|-|^|!");
    std::mt19937 random(13);
    BuiltIn builtInLike("like(?1, ?2)");
    BuiltIn builtInEscape("like(?1, ?2, '!')");
    BuiltIn builtInGlob("glob(?1, ?2)");
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomText(ascii, random, 7);
        const std::string pattern = randomText(wild, random, 6);
        ASSERT_EQ(builtInLike(pattern, text), like(pattern, text)) << pattern << " | " << text;
        ASSERT_EQ(builtInEscape(pattern, text), like(pattern, text, QLatin1Char('!')))
            << pattern << " | " << text;
        ASSERT_EQ(builtInGlob(pattern, text), glob(pattern, text)) << pattern << " | " << text;
    }
}

TEST(PatternMatch, EveryLetterMatchesItsOtherCases) {
    for (uint character = 0x80; character < 0x1F000; ++character) {
        for (const uint other :
             {QChar::toCaseFolded(character), QChar::toUpper(character), QChar::toLower(character)}) {
            if (other == character) {
                continue;
            }
            const QString pattern = QString::fromUcs4(&character, 1);
            const std::string letter = pattern.toStdString();
            const std::string text = QString::fromUcs4(&other, 1).toStdString();
            const bool expected = matchesLetter(pattern, text);
            ASSERT_EQ(expected, like(letter, text)) << character << ' ' << other;
            ASSERT_EQ(expected, glob("[" + letter + "]", text)) << character;
        }
    }
}

TEST(PatternMatch, LettersThatQtDoesNotKnowYetMatchToo) {
    constexpr uint vithkuqi = 0x10570;
    for (uint capital :
         {0x2C2FU, 0xA7C0U, 0xA7D0U, 0xA7D6U, 0xA7D8U, vithkuqi, vithkuqi + 0xB, vithkuqi + 0x25}) {
        for (const uint small : {capital + 1, capital + 0x27, capital + 0x30}) {
            const QString pattern = QString::fromUcs4(&capital, 1);
            const std::string text = QString::fromUcs4(&small, 1).toStdString();
            EXPECT_EQ(matchesLetter(pattern, text), like(pattern.toStdString(), text))
                << capital << ' ' << small;
        }
    }
}

TEST(PatternMatch, ManyRunsOverALongTextTakeNoTime) {
    const std::string text(100000, 'a');
    const std::clock_t start = std::clock(); // of this process, whatever else the machine does
    for (const char* pattern : {"%a%a%a%a%b", "%a%a%a%a%a%a%a%a%b%", "%_a_%_a_%b", "%aaaaaaaaaaaaaaaab"}) {
        EXPECT_FALSE(like(pattern, text)) << pattern;
    }
    EXPECT_TRUE(like("%a%a%a%a", text));
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

TEST(PatternMatch, AConstantPatternServesEveryRowAndAColumnEachItsOwn) {
    const SqlFunctions functions;
    const auto evaluate = [&functions](const char* expression) {
        return functions.evaluate(QString::fromUtf8(expression));
    };
    EXPECT_EQ(
        QStringLiteral("text 1,0,1"),
        evaluate(
            "group_concat(v Like 'a%') From (Select 'abc' v Union All Select 'b' Union All Select 'A')"));
    EXPECT_EQ(QStringLiteral("text 1,0,1"),
              evaluate("group_concat('abc' Like p) From "
                       "(Select 'a%' p Union All Select 'b%' Union All Select '%C')"));
    EXPECT_EQ(QStringLiteral("text 1,0,1"),
              evaluate("group_concat('a%' Like 'a!%' Escape e) From "
                       "(Select '!' e Union All Select '?' Union All Select '!')"));
}
