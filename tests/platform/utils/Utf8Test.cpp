#include "platform/utils/Utf8.h"

#include <QString>

#include <gtest/gtest.h>

#include <random>

using namespace orvane;

namespace {

/// The text read character by character, each part in memory of its own size.
std::u32string read(const std::string& bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    const std::string_view text(exact.data(), exact.size());
    std::u32string characters;
    for (std::size_t at = 0; at < text.size();) {
        characters += utf8::nextCharacter(text, at);
    }
    return characters;
}

std::u32string readBackwards(const std::string& bytes) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(bytes.data());
    std::u32string characters;
    for (const unsigned char* at = begin + bytes.size(); at != begin;) {
        const unsigned char* const start = utf8::previousCharacter(begin, at);
        const unsigned char* next = start;
        characters.insert(characters.begin(), utf8::readCharacter(next, at));
        EXPECT_EQ(at, next);
        at = start;
    }
    return characters;
}

std::u32string qtReads(const std::string& bytes) {
    // Behind a letter, since Qt takes a leading byte order mark away.
    return QString::fromStdString('a' + bytes).mid(1).toStdU32String();
}

} // namespace

TEST(Utf8, ReadsWhatIsWellFormedAndNothingElse) {
    const struct {
        std::string bytes;
        std::u32string characters;
    } cases[] = {{"", U""},
                 {"Ж€😀", U"Ж€😀"},
                 {"\xEF\xBB\xBF", U"\uFEFF"},
                 {"\xEF\xBF\xBE\xEF\xBF\xBF", U"\uFFFE\uFFFF"},
                 {"\x80", U"\uFFFD"},
                 {"\xC0\x80", U"\uFFFD\uFFFD"},           // overlong
                 {"\xE0\x80\x80", U"\uFFFD\uFFFD\uFFFD"}, //
                 {"\xF0\x8F\xBF\xBF", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
                 {"\xED\xA0\xBD", U"\uFFFD\uFFFD\uFFFD"}, // half of a surrogate pair
                 {"\xF4\x8F\xBF\xBF", U"\U0010FFFF"},
                 {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
                 {"\xF8\x88\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
                 {"\xD0\xB6\xBF\xBF", U"ж\uFFFD\uFFFD"},
                 {"a\xE2\x82", U"a\uFFFD\uFFFD"}, // cut off
                 {"\xE2\x82q", U"\uFFFD\uFFFDq"}};
    for (const auto& [bytes, characters] : cases) {
        EXPECT_EQ(characters, read(bytes)) << bytes;
        EXPECT_EQ(characters, readBackwards(bytes)) << bytes;
        EXPECT_EQ(characters.find(utf8::replacement) == std::u32string::npos,
                  utf8::findIllFormed(bytes) == bytes.size());
    }
}

TEST(Utf8, EveryMixOfBytesReadsAsInQt) {
    constexpr char bytes[] =
        "\x01z\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5\xFF";
    std::mt19937 random(25);
    for (int round = 0; round < 50000; ++round) {
        std::string text;
        for (auto count = random() % 7; count > 0; --count) {
            text += bytes[random() % (sizeof bytes - 1)];
        }
        const std::u32string characters = read(text);
        ASSERT_EQ(qtReads(text), characters);
        ASSERT_EQ(characters, readBackwards(text));
        std::string written;
        for (const char32_t character : characters) {
            utf8::append(written, character);
        }
        ASSERT_EQ(characters, read(written));
        ASSERT_EQ(written.size(), utf8::findIllFormed(written));
    }
}

TEST(Utf8, CountsAndSkipsUnitsOfUtf16) {
    const auto* text = reinterpret_cast<const unsigned char*>("aЖ😀b");
    EXPECT_EQ(5, utf8::countUnits(text));
    EXPECT_EQ(text + 3, utf8::skipUnits(text, 2));
    EXPECT_EQ(nullptr, utf8::skipUnits(text, 3)); // within the pair
    EXPECT_EQ(text + 7, utf8::skipUnits(text, 4));
    EXPECT_EQ(text + 8, utf8::skipUnits(text, 99));
    EXPECT_EQ(-1, utf8::countUnits(reinterpret_cast<const unsigned char*>("a\xED\xA0\xBD")));
}
