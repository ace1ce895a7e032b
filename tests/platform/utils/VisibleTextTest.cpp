#include "platform/utils/VisibleText.h"

#include <gtest/gtest.h>

using namespace orvane;

TEST(VisibleText, ShowsWhatATerminalWouldObeyOrHide) {
    const struct {
        std::string text;
        std::string shown;
    } cases[] = {
        {"", ""},
        {"a~ Жук 東京", "a~ Жук 東京"},
        {"a\tb\r\n", "a␉b␍␊"},
        {std::string("\0\a\b\x1B[2J\x7F", 8), "␀␇␈␛[2J␡"},
        {"\u0080\u009B31m\u009F", "<U+0080><U+009B>31m<U+009F>"},
        {"\x9B"
         "31m \xFFЖ\xD0",
         "\uFFFD31m \uFFFDЖ\uFFFD"}, // raw bytes
        {"\uFFFD", "\uFFFD"},
        {"a\u061C\u200E\u200F", "a<U+061C><U+200E><U+200F>"},
        {"\u202A\u202B\u202C\u202D\u202E", "<U+202A><U+202B><U+202C><U+202D><U+202E>"},
        {"\u2066\u2067\u2068\u2069", "<U+2066><U+2067><U+2068><U+2069>"},
        {"\u00AD\u200B\u2028\u2029\u2060\uFEFF\uFFF9",
         "<U+00AD><U+200B><U+2028><U+2029><U+2060><U+FEFF><U+FFF9>"},
        {"\u2065\U000E0000\U000E0FFF", "<U+2065><U+E0000><U+E0FFF>"}, // reserved for such characters
        {"👨\u200D👩\u200D👧 🏳\uFE0F\u200D🌈 👩🏽\u200D🚀 ❤\uFE0F",
         "👨\u200D👩\u200D👧 🏳\uFE0F\u200D🌈 👩🏽\u200D🚀 ❤\uFE0F"},
        {"🇷🇺 🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F",
         "🇷🇺 🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F"},
        {"🏴\U000E0067 🏴\U000E007F 🚀\U000E0067\U000E007F",
         "🏴<U+E0067> 🏴<U+E007F> 🚀<U+E0067><U+E007F>"},
        {"می\u200Cخواهم क्\u200Dष 葛\U000E0100", "می\u200Cخواهم क्\u200Dष 葛\U000E0100"},
        {"a\u200Db 1\u200C0 👨\u200D \u200D👩 ی\u200C", "a<U+200D>b 1<U+200C>0 👨<U+200D> <U+200D>👩 ی<U+200C>"}};
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(utils::visibleText(text), shown);
        EXPECT_EQ(utils::visibleText(shown), shown);
    }
    std::string lines = "a\tb\nc\x1B\n";
    utils::makeLinesVisible(lines);
    EXPECT_EQ(lines, "a␉b\nc␛\n");
}
