#include "platform/sql/lexing/Lexer.h"
#include "platform/sql/lexing/Script.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "support/RandomText.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <random>

namespace orvane::tests {
namespace {

using namespace sql;

TEST(Lexer, TokensCarryTheirPlaceAndMeaning) {
    const TokenizedText text = tokenize("Select \"й\"\"к\",\n  🚲.[x] , 'it''s'");
    ASSERT_FALSE(text.error);
    struct Expected {
        TokenKind kind;
        const wchar_t* value;
        int line;
        int column;
    };
    const Expected expected[] = {{TokenKind::Word, L"Select", 1, 1}, {TokenKind::QuotedName, L"й\"к", 1, 8},
                                 {TokenKind::Comma, L",", 1, 14},    {TokenKind::Word, L"🚲", 2, 3},
                                 {TokenKind::Dot, L".", 2, 4},       {TokenKind::QuotedName, L"x", 2, 5},
                                 {TokenKind::Comma, L",", 2, 9},     {TokenKind::Text, L"it's", 2, 11},
                                 {TokenKind::End, L"", 2, 18}};
    ASSERT_EQ(text.tokens.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const TextPosition position = text.position(text.tokens[i].offset);
        EXPECT_EQ(text.tokens[i].kind, expected[i].kind) << i;
        EXPECT_EQ(text.value(text.tokens[i]), expected[i].value) << i;
        EXPECT_EQ(position.line, expected[i].line) << i;
        EXPECT_EQ(position.column, expected[i].column) << i;
    }
}

TEST(Lexer, TokensBeforeAFaultStay) {
    const TokenizedText text = tokenize("Select a 'b");
    ASSERT_TRUE(text.error);
    ASSERT_EQ(text.tokens.size(), 3u);
    EXPECT_EQ(text.tokens.back().kind, TokenKind::End);
}

TEST(Lexer, BytesThatAreNoUtf8AreRefusedWhereTheyStand) {
    const std::string broken[] = {"a \xFF",     "a \xC3",         "a \xC0\x80",
                                  "a \xE2\x82", "a \xED\xA0\x80", "a \xF4\x90\x80\x80",
                                  "a \x80",     "a '\xD0'",       "a \xF8\x88\x80\x80\x80"};
    for (const std::string& text : broken) {
        const TokenizedText result = tokenize(text);
        ASSERT_TRUE(result.error) << text;
        EXPECT_GE(result.error->place()->column, 3) << text;
    }
    EXPECT_FALSE(tokenize("\xEF\xBB\xBFSelect 1").error);
}

TEST(Lexer, ZeroCharactersAreRefusedEverywhere) {
    for (const char* text : {"a @ b", "'a@b'", "\"a@b\""}) {
        std::string withZero = text;
        withZero[withZero.find('@')] = '\0';
        EXPECT_TRUE(tokenize(withZero).error) << text;
    }
}

TEST(Script, StatementsAreCutOutsideTextsNamesAndComments) {
    const auto script = splitScript("\xEF\xBB\xBF-- first;\nSelect ';', \"a;b\", [c;d] /* ; */ From t;\n"
                                    ";; /* nothing; */\n  Имя; Select 'it''s; fine' -- the end;\n");
    const auto& statements = script.statements;
    EXPECT_FALSE(script.endsInComment);
    ASSERT_EQ(statements.size(), 3u);
    EXPECT_EQ(statements[0].text, "Select ';', \"a;b\", [c;d] /* ; */ From t");
    EXPECT_EQ(statements[0].line, 2);
    EXPECT_EQ(statements[0].column, 1);
    EXPECT_EQ(statements[1].text, "Имя");
    EXPECT_EQ(statements[1].line, 4);
    EXPECT_EQ(statements[1].column, 3);
    EXPECT_TRUE(statements[1].terminated);
    EXPECT_EQ(statements[2].text, "Select 'it''s; fine' -- the end;\n");
    EXPECT_EQ(statements[2].column, 8) << "columns count characters";
    EXPECT_FALSE(statements[2].terminated);
    EXPECT_TRUE(splitScript(" \n-- nothing").statements.empty());
    EXPECT_EQ(splitScript("Select 'open; text").statements.size(), 1u);
    for (const char* open : {"/*", "Select 1; /* what\n.tables\ncomes; next"}) {
        EXPECT_TRUE(splitScript(open).endsInComment) << open;
    }
}

TEST(Script, CommandsBeginWhereAStatementCouldAndEndWithTheirLine) {
    const auto statements =
        splitScript(".open a;b.csv\r\n  .tables\nSelect t\n.id From t; .5; .mode csv -- all\n.7").statements;
    const std::pair<const char*, bool> expected[] = {{".open a;b.csv\r", true},       {".tables", true},
                                                     {"Select t\n.id From t", false}, {".5", false},
                                                     {".mode csv -- all", true},      {".7", false}};
    ASSERT_EQ(statements.size(), std::size(expected));
    for (std::size_t i = 0; i < statements.size(); ++i) {
        EXPECT_EQ(statements[i].text, expected[i].first);
        EXPECT_EQ(statements[i].isCommand, expected[i].second) << statements[i].text;
        EXPECT_EQ(statements[i].terminated, i + 1 < statements.size()) << statements[i].text;
    }
    EXPECT_EQ(statements.back().line, 5);
}

TEST(Keywords, EveryKeywordIsFoundInAnyLetterCase) {
    for (int i = 1; i < keywordCount; ++i) {
        const auto keyword = static_cast<Keyword>(i);
        const std::wstring text(spelling(keyword));
        EXPECT_EQ(findKeyword(text), keyword) << toUtf8(text);
        EXPECT_EQ(findKeyword(toLowercase(text)), keyword) << toUtf8(text);
        EXPECT_EQ(findKeyword(text + L"x"), Keyword::None) << toUtf8(text);
    }
}

TEST(Keywords, EditDistanceCountsSwapsOnce) {
    EXPECT_EQ(editDistance(L"Form", L"from", 2), 1);
    EXPECT_EQ(editDistance(L"Slect", L"Select", 2), 1);
    EXPECT_EQ(editDistance(L"", L"On", 2), 2);
    EXPECT_EQ(editDistance(L"kitten", L"sitting", 3), 3);
    EXPECT_GT(editDistance(L"a", L"abcd", 2), 2);
}

TEST(Limits, DepthIsBoundedWithAnError) {
    const auto repeated = [](int count, const char* text) {
        return QByteArray(text).repeated(count).toStdString();
    };
    const std::pair<std::string, bool> texts[] = {
        {repeated(350, "(") + "1" + repeated(350, ")"), true},
        {repeated(30000, "("), false},
        {repeated(30000, "Not "), false},
        {repeated(30000, "- ") + "1", false},
        {repeated(30000, "f("), false},
        {repeated(30000, "Case "), false},
        {repeated(30000, "Select * From ("), false},
        {repeated(30000, "(Select "), false},
        {"a" + repeated(900, " And a"), true},
        {"a" + repeated(30000, " And a"), false},
        {"a" + repeated(30000, " Collate b"), false},
        {"Select * From a" + repeated(30000, " Natural Join b"), false},
        {"Table a" + repeated(30000, " Union Table a"), false},
        {"(a" + repeated(600, " + a") + ") * 2" + repeated(600, " + a"), false},
        {"a In (0" + repeated(30000, ", a + 1") + ")", true},
        {"'" + repeated(300000, "й") + "'", true}};
    for (const auto& [text, accepted] : texts) {
        SqlParser parser(nullptr);
        EXPECT_EQ(parser.parse(text), accepted) << text.substr(0, 40);
    }
}

/// Texts put together from the pieces of the language at random: whatever comes out, parsing ends, at once,
/// with a tree or with an error that has a place.
TEST(Limits, AnyTextEndsInATreeOrAnError) {
    const auto pieces = tests::pieces("Select |From |Where |(|)|,|a|.|'x'|\"y\"|1| Union |Table |With | As | "
                                      "Join | On | In | Not | Is |Case |"
                                      "When | End| Between | And |*|-|Insert Into |Values |Update | Set |=| "
                                      "Over | Contains Part |;|\xFF|'|/*|"
                                      "\n|Null|🚲|Order By ");
    std::mt19937 random(20260101);
    for (int i = 0; i < 20000; ++i) {
        const std::string text = randomText(pieces, random, 25);
        SqlParser parser(nullptr);
        if (!parser.parse(text)) {
            ASSERT_EQ(parser.errors().size(), 1u) << text;
            ASSERT_TRUE(parser.errors().front()->place()) << text;
        }
    }
}

} // namespace
} // namespace orvane::tests
