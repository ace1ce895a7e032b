#include "platform/sql/DialectCases.h"
#include "platform/sql/TreeDump.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "platform/sql/printing/SqlStringBuilder.h"

#include <gtest/gtest.h>

namespace orvane::tests {
namespace {

using namespace sql;

std::string print(const ParseResult& result) {
    return toUtf8(SqlStringBuilder(nullptr).buildString(*result.node()));
}

TEST(DialectText, PrintsAndParsesBackToTheSameTree) {
    for (const DialectCase& expected : readDialectCases()) {
        if (!expected.error.empty()) {
            continue;
        }
        SqlParser parser(nullptr);
        ASSERT_TRUE(parser.parse(expected.input)) << expected << '\n' << parser.errors().front()->what();
        const ParseResult first = parser.result();
        EXPECT_EQ(print(first), expected.dialect) << expected;

        ASSERT_TRUE(parser.parse(expected.dialect)) << expected << '\n' << parser.errors().front()->what();
        EXPECT_EQ(toUtf8(dumpTree(*parser.result().node())), toUtf8(dumpTree(*first.node()))) << expected;
        EXPECT_EQ(parser.result().isExpression(), first.isExpression()) << expected;
    }
}

/// Every expression and query within a statement is what its place in the text says.
TEST(DialectText, NodesKnowTheirPlaces) {
    using ast::NodeKind;
    int compared = 0;
    for (const DialectCase& expected : readDialectCases()) {
        SqlParser parser(nullptr);
        if (!parser.parse(expected.input)) {
            continue;
        }
        const ParseResult whole = parser.result();
        ast::forEachNode(*whole.node(), [&](const ast::Node& node) {
            const bool isText = node.kind == NodeKind::Operation || node.kind == NodeKind::ColumnReference ||
                                node.kind == NodeKind::Function || node.kind == NodeKind::Number ||
                                node.kind == NodeKind::QuerySpecification;
            const std::string text = toUtf8(whole.text(node.place));
            if (isText && node.place.length != 0) {
                ++compared;
                EXPECT_TRUE(parser.parse(text)) << expected << '\n' << text;
                EXPECT_EQ(toUtf8(dumpTree(*parser.result().node())), toUtf8(dumpTree(node))) << expected;
            }
            return true;
        });
    }
    EXPECT_GT(compared, 900);
}

TEST(DialectText, ErrorsNameThePlaceAndTheRemedy) {
    for (const DialectCase& expected : readDialectCases()) {
        if (expected.error.empty()) {
            continue;
        }
        SqlParser parser(nullptr);
        ASSERT_FALSE(parser.parse(expected.input)) << expected;
        ASSERT_EQ(parser.errors().size(), 1u) << expected;
        EXPECT_EQ(parser.result().node(), nullptr) << expected;
        const SqlSyntaxError& error = *parser.errors().front();
        ASSERT_TRUE(error.place()) << expected;
        const std::string place =
            std::to_string(error.place()->line) + ':' + std::to_string(error.place()->column);
        const std::string what = error.what();
        EXPECT_EQ(place + what.substr(what.find(": ") + 1), expected.error) << expected;
        EXPECT_EQ(toUtf8(error.message()), what) << expected;
    }
}

TEST(DialectText, ExpressionsAreToldFromStatements) {
    const std::pair<const char*, bool> texts[] = {{"a + 1", true},
                                                  {"(Select 1)", false},
                                                  {"(Select 1) + 1", true},
                                                  {"((Select 1) Union Select 2)", false},
                                                  {"Table t", false},
                                                  {"Table", true},
                                                  {"Update + 1", true},
                                                  {"Delete From t", false},
                                                  {"((Select (a) + 1)) Order By 1", false},
                                                  {"((Select 1)) Is Null", true},
                                                  {"(Select 1 Union Select (2)) In (1)", true},
                                                  {"With t As (Select 1) Table t", false}};
    for (const auto& [text, isExpression] : texts) {
        SqlParser parser(nullptr);
        ASSERT_TRUE(parser.parse(text)) << text << '\n' << parser.errors().front()->what();
        EXPECT_EQ(parser.result().isExpression(), isExpression) << text;
    }
}

TEST(DialectText, ContextNamesReservedNames) {
    struct Reserved : StringBuildContext {
        bool isReservedName(const std::wstring& name) const override { return name == L"a"; }
    } reserved;
    SqlParser parser(nullptr);
    ASSERT_TRUE(parser.parse("b + a + a()"));
    EXPECT_EQ(SqlStringBuilder(&reserved).buildString(*parser.result().node()), L"b + \"a\" + \"a\"()");
}

/// Trees that no text gives still print: nothing is read that is not there.
TEST(DialectText, FaultyTreesPrint) {
    const ast::Operation noOperands(OperationCode::Add, nullptr);
    EXPECT_EQ(SqlStringBuilder(nullptr).buildString(noOperands), L" +");
    const ast::Operation twoMinus(OperationCode::Negate, std::make_shared<ast::Number>(L"-5"));
    EXPECT_EQ(SqlStringBuilder(nullptr).buildString(twoMinus), L"-(-5)");
    EXPECT_EQ(SqlStringBuilder(nullptr).buildString(ast::QuerySpecification()), L"Select ");
    EXPECT_EQ(SqlStringBuilder(nullptr).buildString(ast::UpdateStatement()), L"Update  Set ");
}

} // namespace
} // namespace orvane::tests
