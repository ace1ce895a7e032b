#include "IndexFixture.h"

#include "support/DefaultLocale.h"
#include "support/PatternExpression.h"
#include "support/RandomText.h"

#include "engine/indices/PatternRange.h"

#include <QRegularExpression>

#include <random>

namespace orvane::engine {

namespace {

TEST(PatternRange, SpansWhatBeginsWithTheLetters) {
    struct Case {
        const char* locale;
        const char* pattern;
        quint8 operation;
        const char* lower;
        const char* upper;
    };
    constexpr quint8 like = EngineIndices::Like, glob = EngineIndices::Glob;
    const std::vector<Case> cases = {
        {"ru", "мос%", like, "мос", "мот"},
        {"ru", "МО_%", like, "мо", "мп"},
        {"ru", "%bc", like, "", ""},
        {"ru", "", like, "", ""},
        {"ru", "Abc", EngineIndices::Equal, "", ""},
        {"ru", "whole", like, "whole", "wholf"},
        {"ru", "ab*?%", like, "ab*?", "ab*."},
        {"ru", "ab%_*", glob, "ab%_", "ab%-"},
        {"ru", "ab?", glob, "ab", "ac"},
        {"ru", "ab[cd]", glob, "ab", "ac"},
        {"ru", "zz%", like, "zz", "zα"},
        {"ru", "Ёлка%", like, "елка", "елкб"}, // ё is an accented е
        {"ru", "и%", like, "и", "ј"},          // и with a breve is й
        {"ru", "Žená%", like, "zena", "zenb"},
        {"ru", "a🎄%", like, "a", "b"},
        {"ru", "straße%", like, "stra", "strb"},
        {"de", "ſtadt%", like, "", ""},
        {"tr", "bi%", like, "b", "c"}, // a pattern takes "I" for "i", the alphabet for "ı"
        {"tr", "İzmir%", like, "", ""},
        {"cs", "ch%", like, "", ""}, // one letter, after h
        {"cs", "bc%", like, "b", "d"},
        {"sv", "ka%", like, "ka", "kа"}, // a with a ring comes after z
        {"sv", "bå%", like, "b", "c"},
        {"cy", "n%", like, "", ""}, // ng comes after g
    };
    for (const Case& test : cases) {
        const tests::DefaultLocale guard(test.locale);
        const PatternRange range = PatternRanges(LocaleOrder::current()).find(test.pattern, test.operation);
        const auto order = LocaleOrder::current();
        EXPECT_EQ(order->compare(range.lower, test.lower), 0)
            << test.locale << ' ' << test.pattern << ' ' << range.lower;
        EXPECT_EQ(order->compare(range.upper, test.upper), 0)
            << test.locale << ' ' << test.pattern << ' ' << range.upper;
    }
}

/// Random texts and patterns over letters that locales order in their own ways, and which of the texts each
/// pattern matches as a regular expression.
struct Sample {
    struct Pattern {
        quint8 operation;
        QString text;
        std::vector<qint64> matches;
    };

    Sample() {
        const std::string letters =
            "a|A|b|c|C|d|e|é|g|h|i|İ|ı|I|k|K|n|o|s|ſ|z|Z|ž|á|å|ß|ẞ|а|е|Ё|ё|и|й|Я|я|ι|เ|ก|[|{|-|'| |1|🎄|"
            "\u0301|\u0306|\u0308|\u030a|\u0323|\u0345|\u02bb";
        std::mt19937 random(2024);
        const auto word = [&random](const std::string& pieces, unsigned longest) {
            return QString::fromStdString(tests::randomText(tests::pieces(pieces), random, longest));
        };
        for (int i = 0; i < 1200; ++i) {
            texts.push_back(word(letters, 4));
        }
        for (int i = 0; i < 250; ++i) {
            const bool isLike = i % 2 == 0;
            patterns.push_back({isLike ? EngineIndices::Like : EngineIndices::Glob,
                                word(letters + "|%|_|%|*|?", 3) + QLatin1Char(isLike ? '%' : '*'),
                                {}});
            findMatches(patterns.back());
        }
    }

    static const Sample& instance() {
        static const Sample sample;
        return sample;
    }

    std::vector<QString> texts;
    std::vector<Pattern> patterns;

private:
    void findMatches(Pattern& pattern) const {
        const QRegularExpression expression = pattern.operation == EngineIndices::Like
                                                  ? tests::PatternExpression::like(pattern.text, 0)
                                                  : tests::PatternExpression::glob(pattern.text);
        for (std::size_t row = 0; row < texts.size(); ++row) {
            if (expression.match(texts[row]).hasMatch()) {
                pattern.matches.push_back(static_cast<qint64>(row));
            }
        }
    }
};

class PatternSearch : public IndexFixture, public testing::WithParamInterface<const char*> {};

/// Every pattern finds in an index exactly what the regular expression finds without one, whatever the
/// locale: by code; by alphabets that the pattern's case folding agrees with or not (Turkish); with digraphs
/// (Czech "ch", Welsh "ng", Breton "c'h", Danish "aa") and letters made with marks and modifiers (Swedish,
/// Uzbek, Vietnamese); with accents compared backwards (Canadian French).
TEST_P(PatternSearch, FindsWhatAScanFinds) {
    const tests::DefaultLocale guard(GetParam());
    store_ = makeStore(cache_);
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::QString})));
    const int index = store_->addIndex({{0, Operation::Like}});
    std::vector<std::vector<QVariant>> rows;
    for (const QString& each : Sample::instance().texts) {
        rows.push_back({each});
    }
    insert(index, rows);
    int narrowed = 0;
    for (const Sample::Pattern& pattern : Sample::instance().patterns) {
        EXPECT_EQ(find(index, {{0, pattern.operation, pattern.text}}), pattern.matches)
            << GetParam() << " " << qPrintable(pattern.text);
        const QByteArray utf8 = pattern.text.toUtf8();
        const dp::Cell operand = dp::Cell::ofText({utf8.constData(), static_cast<std::size_t>(utf8.size())});
        EXPECT_GE(store_->countRows(index, {0, pattern.operation}, operand, 5000), pattern.matches.size());
        narrowed += store_->narrows(pattern.operation, operand.view());
    }
    EXPECT_GT(narrowed, 50);
}

INSTANTIATE_TEST_SUITE_P(Locales, PatternSearch,
                         testing::Values("C", "ru_RU", "cs_CZ", "th_TH", "tr_TR", "sv_SE", "da_DK", "cy_GB",
                                         "br_FR", "uz_UZ", "vi_VN", "fr_CA"));

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
