#include "IndexFixture.h"

#include "support/DefaultLocale.h"
#include "support/RandomText.h"

#include "engine/indices/PatternRange.h"
#include "platform/utils/Patterns.h"
#include <orvane/engine/Collator.h>

#include <QRegularExpression>

#include <random>

namespace orvane::engine {

namespace {

TEST(PatternRange, EndsBeforeTheNextCodeWhereThatIsTheNextInOrder) {
    const tests::DefaultLocale guard("C");
    const QCollator byCode = collator();
    struct Case {
        const char* pattern;
        quint8 operation;
        const char* lower;
        const char* upper;
    };
    const std::vector<Case> cases = {
        {"Abc%", EngineIndices::Like, "Abc", "Abd"},
        {"ab_c", EngineIndices::Like, "ab", "ac"},
        {"%bc", EngineIndices::Like, "", ""},
        {"", EngineIndices::Like, "", ""},
        {"whole", EngineIndices::Like, "whole", "wholf"},
        {"ab*?[", EngineIndices::Like, "ab*?[", "ab*?\\"},
        {"ab%_*", EngineIndices::Glob, "ab%_", "ab%`"},
        {"ab?", EngineIndices::Glob, "ab", "ac"},
        {"ab[cd]", EngineIndices::Glob, "ab", "ac"},
        {"Дом%", EngineIndices::Like, "Дом", "Дон"},
        {"aZ%", EngineIndices::Like, "aZ", "b"}, // "[" comes before "z"
        {"Я%", EngineIndices::Like, "Я", ""},    // "а" comes before "я"
        {"a🎄%", EngineIndices::Like, "a🎄", "b"}, // half a character has no successor
        {"abc", EngineIndices::Equal, "", ""},
    };
    for (const Case& test : cases) {
        const PatternRange range = patternRange(QString::fromUtf8(test.pattern), test.operation, byCode);
        EXPECT_EQ(range.lower, QString::fromUtf8(test.lower)) << test.pattern;
        EXPECT_EQ(range.upper, QString::fromUtf8(test.upper)) << test.pattern;
    }
}

class PatternSearch : public IndexFixture, public testing::WithParamInterface<const char*> {};

/// Every pattern finds in an index exactly what the regular expression finds without one, in locales that
/// order by code, by the letters of an alphabet, and with digraphs that are letters of their own (Czech
/// "ch").
TEST_P(PatternSearch, FindsWhatAScanFinds) {
    const tests::DefaultLocale guard(GetParam());
    store_ = makeStore(cache_);
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::QString})));
    const int index = store_->addIndex({{0, Operation::Like}});

    const std::string letters = "a|A|b|c|C|h|z|Z|а|Я|я|Ё|е|é|e|[|{|-| |'|1|🎄|ß|s|ı|I|\u0301|เ|ก";
    std::mt19937 random(2024);
    const auto word = [&](const std::string& alphabet, unsigned longest) {
        return QString::fromStdString(tests::randomText(tests::pieces(alphabet), random, longest));
    };
    constexpr int numTexts = 1500;
    std::vector<std::vector<QVariant>> rows;
    for (int i = 0; i < numTexts; ++i) {
        rows.push_back({word(letters, 5)});
    }
    insert(index, rows);

    constexpr int numPatterns = 300;
    for (int i = 0; i < numPatterns; ++i) {
        const bool isLike = i % 2 == 0;
        const QString pattern = word(letters + "|%|_|%|*|?", 4) + (isLike ? text("%") : text("*"));
        const QRegularExpression expression(isLike ? utils::likeToRegular(pattern, QChar(0))
                                                   : utils::globToRegular(pattern),
                                            QRegularExpression::CaseInsensitiveOption);
        std::vector<qint64> expected;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            if (expression.match(rows[row][0].toString()).hasMatch()) {
                expected.push_back(qint64(row));
            }
        }
        const quint8 operation = isLike ? Operation::Like : Operation::Glob;
        EXPECT_EQ(find(index, {{0, operation, pattern}}), expected)
            << GetParam() << " " << qPrintable(pattern);
    }
}

INSTANTIATE_TEST_SUITE_P(Locales, PatternSearch, testing::Values("C", "ru_RU", "cs_CZ", "th_TH"));

class BytewisePatternSearch : public IndexFixture {};

TEST_F(BytewisePatternSearch, IsNotNarrowedWhereTheColumnIsOrderedByBytes) {
    store_ = makeStore(cache_, false); // neither collation nor our pattern functions: SQLite's own
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::QString})));
    const int index = store_->addIndex({{0, Operation::Like}});
    insert(index, {{text("abc")}, {text("ABC")}, {text("b")}});
    EXPECT_EQ(find(index, {{0, Operation::Like, text("aB%")}}), (std::vector<qint64>{0, 1}));
    EXPECT_EQ(find(index, {{0, Operation::Glob, text("a*")}}), std::vector<qint64>{0});
}

} // namespace

} // namespace orvane::engine
