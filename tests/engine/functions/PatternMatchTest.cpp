#include "SqlFunctions.h"

#include "host/adaptor/PatternMatch.h"
#include "platform/utils/Patterns.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <random>

using orvane::adaptor::PatternMatch;

namespace {

const unsigned char* bytes(const QByteArray& text) {
    return reinterpret_cast<const unsigned char*>(text.constData());
}

bool matchesRegular(const QString& expression, const QString& text) {
    return QRegularExpression(expression, QRegularExpression::CaseInsensitiveOption).match(text).hasMatch();
}

QString randomText(std::mt19937& random, const std::vector<const char*>& pieces, unsigned most) {
    QString text;
    for (auto count = random() % (most + 1); count > 0; --count) {
        text += QString::fromUtf8(pieces[random() % pieces.size()]);
    }
    return text;
}

/// SQLite's own LIKE (which folds ASCII) or GLOB (which folds nothing).
class BuiltIn {
public:
    explicit BuiltIn(const char* function) {
        sqlite3_open(":memory:", &database_);
        const QByteArray sql = QByteArray("Select ") + function;
        sqlite3_prepare_v2(database_, sql.constData(), -1, &statement_, nullptr);
    }
    ~BuiltIn() {
        sqlite3_finalize(statement_);
        sqlite3_close(database_);
    }
    bool operator()(const QByteArray& pattern, const QByteArray& text) {
        sqlite3_bind_text(statement_, 1, pattern.constData(), pattern.size(), SQLITE_STATIC);
        sqlite3_bind_text(statement_, 2, text.constData(), text.size(), SQLITE_STATIC);
        sqlite3_step(statement_);
        const bool result = sqlite3_column_int(statement_, 0) != 0;
        sqlite3_reset(statement_);
        return result;
    }

private:
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
};

const std::vector<const char*> texts = {"a", "A", "b",          "k",          "K", "\u212A", "s", "ſ",  "ß",
                                        "ẞ", "i", "I",          "İ",          "ı", "ж",      "Ж", "σ",  "ς",
                                        "Σ", "😀", "\U00010428", "\U00010400", "-", "]",      "^", "\n", "!"};
const std::vector<const char*> likes = {"a", "K", "ſ", "Ж", "ς", "😀", "\U00010400", "%",
                                        "%", "_", "!", "[", "*", "i", "."};
const std::vector<const char*> globs = {"a", "k", "S", "Ж", "σ",     "😀",    "*",    "*",  "?",
                                        "[", "]", "^", "-", "[a-ж]", "[^k]", "[K-]", "[!]"};

} // namespace

TEST(PatternMatch, AgreesWithTheRegularExpressions) {
    std::mt19937 random(11);
    int matched = 0;
    for (int round = 0; round < 20000; ++round) {
        const QString text = randomText(random, texts, 6);
        const QString like = randomText(random, likes, 5);
        const QString glob = randomText(random, globs, 5);
        const QChar escape = round % 2 == 0 ? QChar() : QLatin1Char('!');
        const bool expectedLike = matchesRegular(orvane::utils::likeToRegular(like, escape), text);
        const bool expectedGlob = matchesRegular(orvane::utils::globToRegular(glob), text);
        matched += expectedLike + expectedGlob;
        ASSERT_EQ(expectedLike,
                  PatternMatch::like(bytes(like.toUtf8()), escape.unicode()).matches(bytes(text.toUtf8())))
            << like.toStdString() << " | " << text.toStdString() << " | " << escape.unicode();
        ASSERT_EQ(expectedGlob, PatternMatch::glob(bytes(glob.toUtf8())).matches(bytes(text.toUtf8())))
            << glob.toStdString() << " | " << text.toStdString();
    }
    EXPECT_GT(matched, 1000);
}

TEST(PatternMatch, AgreesWithSqliteOnAscii) {
    const std::vector<const char*> ascii = {"a", "b", "c", "d", "0", "-", "]", "[",
                                            "^", "*", "?", "%", "_", "!", "."};
    const std::vector<const char*> wild = {"*",    "?", "%", "_", "[", "[a-c]", "[c-a]", "[^b]",
                                           "[]a]", "a", "b", "]", "-", "^",     "!"};
    std::mt19937 random(13);
    BuiltIn builtInLike("like(?1, ?2)");
    BuiltIn builtInEscape("like(?1, ?2, '!')");
    BuiltIn builtInGlob("glob(?1, ?2)");
    for (int round = 0; round < 20000; ++round) {
        const QByteArray text = randomText(random, ascii, 7).toUtf8();
        const QByteArray pattern = randomText(random, wild, 6).toUtf8();
        const std::string context = (pattern + " | " + text).toStdString();
        ASSERT_EQ(builtInLike(pattern, text), PatternMatch::like(bytes(pattern), 0).matches(bytes(text)))
            << context;
        ASSERT_EQ(builtInEscape(pattern, text), PatternMatch::like(bytes(pattern), '!').matches(bytes(text)))
            << context;
        ASSERT_EQ(builtInGlob(pattern, text), PatternMatch::glob(bytes(pattern)).matches(bytes(text)))
            << context;
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
            const QString text = QString::fromUcs4(&other, 1);
            const bool expected = matchesRegular(pattern, text);
            ASSERT_EQ(expected, PatternMatch::like(bytes(pattern.toUtf8()), 0).matches(bytes(text.toUtf8())))
                << character << ' ' << other;
            const QByteArray klass = "[" + pattern.toUtf8() + "]";
            ASSERT_EQ(expected, PatternMatch::glob(bytes(klass)).matches(bytes(text.toUtf8()))) << character;
        }
    }
}

TEST(PatternMatch, LettersThatQtDoesNotKnowYetMatchToo) {
    constexpr uint vithkuqi = 0x10570;
    for (uint capital :
         {0x2C2FU, 0xA7C0U, 0xA7D0U, 0xA7D6U, 0xA7D8U, vithkuqi, vithkuqi + 0xB, vithkuqi + 0x25}) {
        for (const uint small : {capital + 1, capital + 0x27, capital + 0x30}) {
            const QString pattern = QString::fromUcs4(&capital, 1);
            const QString text = QString::fromUcs4(&small, 1);
            EXPECT_EQ(matchesRegular(pattern, text),
                      PatternMatch::like(bytes(pattern.toUtf8()), 0).matches(bytes(text.toUtf8())))
                << capital << ' ' << small;
        }
    }
}

TEST(PatternMatch, ManyRunsOverALongTextTakeNoTime) {
    const QByteArray text(100000, 'a');
    QElapsedTimer timer;
    timer.start();
    for (const char* pattern : {"%a%a%a%a%b", "%a%a%a%a%a%a%a%a%b%", "%_a_%_a_%b", "%aaaaaaaaaaaaaaaab"}) {
        EXPECT_FALSE(PatternMatch::like(bytes(QByteArray(pattern)), 0).matches(bytes(text))) << pattern;
    }
    EXPECT_TRUE(PatternMatch::like(bytes(QByteArrayLiteral("%a%a%a%a")), 0).matches(bytes(text)));
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST(PatternMatch, AConstantPatternServesEveryRowAndAColumnEachItsOwn) {
    const orvane::test::SqlFunctions functions;
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
