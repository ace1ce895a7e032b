#include <orvane/engine/LocaleOrder.h>

#include "support/DefaultLocale.h"
#include "support/RandomText.h"

#include <orvane/engine/Collator.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace orvane::engine {

namespace {

int sign(int order) {
    return (order > 0) - (order < 0);
}

TEST(LocaleOrder, AgreesWithTheCollatorOfEveryLanguage) {
    const tests::DefaultLocale guard("C");
    // What locales order in ways of their own: digraphs, accents, combining marks, ignorable characters.
    const auto pieces =
        tests::pieces("a|b|c|h|s|z|A|C|H|Z|ch|CH|aa|cs|ccs|dz|dzs|ll|lj|nj|ij|i|I|w|v|y|ng|th|c'h|0|9|10| "
                      "|-|'|_|\x01|я|Я|а|А|"
                      "е|ё|Ё|и|й|ж|ґ|г|ў|ъ|ü|Ü|ö|ä|å|é|ß|ı|İ|œ|\u0306|\u0301|\u200d|漢|😀|\xff|\xd0|"
                      "\xf8\x88\x80\x80|\xf4\x90\x80\x80|\xed\xa0\x80|\xe0\x80\x80|o'|g'|O'|oʻ|g‘|`");
    std::mt19937 random(7);
    QLocale::Language last = QLocale::AnyLanguage;
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        if (locale.language() == std::exchange(last, locale.language())) {
            continue;
        }
        QLocale::setDefault(locale);
        const auto order = LocaleOrder::current();
        const QCollator reference = collator();
        for (int round = 0; round < 1500; ++round) {
            const std::string a = tests::randomText(pieces, random, 5);
            const std::string b = (round % 3 == 0 ? a : "") + tests::randomText(pieces, random, 5);
            const int expected =
                sign(reference.compare(QString::fromStdString(a), QString::fromStdString(b)));
            ASSERT_EQ(sign(order->compare(a, b)), expected)
                << locale.name().toStdString() << " " << a << " " << b;
            std::string keyA, keyB;
            if (order->plainKey(a, keyA) && order->plainKey(b, keyB)) {
                ASSERT_EQ(sign(keyA.compare(keyB)), expected);
            }
        }
    }
}

TEST(LocaleOrder, LettersThatStandAloneArePlain) {
    struct Case {
        QLocale::Language language;
        const char* text;
        bool isPlain;
    };
    const Case cases[] = {{QLocale::English, "Smith & Sons, 12-14", true},
                          {QLocale::English, "Москва", true},
                          {QLocale::Russian, "УЛИЦА Мира, 5", true},
                          {QLocale::Russian, "Королёв", false},
                          {QLocale::Czech, "chata", false},
                          {QLocale::Czech, "most", true},
                          {QLocale::English, "tab\there", false},
                          {QLocale::English, "Zürich", false}};
    const tests::DefaultLocale guard("C");
    for (const Case& each : cases) {
        QLocale::setDefault(QLocale(each.language));
        std::string key;
        EXPECT_EQ(LocaleOrder::current()->plainKey(each.text, key), each.isPlain) << each.text;
    }
}

} // namespace

} // namespace orvane::engine
