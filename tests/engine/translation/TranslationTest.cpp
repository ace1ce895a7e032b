#include "engine/translation/ScratchDatabase.h"
#include "platform/sql/DialectCases.h"
#include "platform/sql/TreeGenerator.h"

#include <orvane/engine/SqliteStringBuilder.h>

#include "platform/sql/SqlParser.h"
#include "platform/sql/SqlStrings.h"

#include <gtest/gtest.h>

namespace orvane::tests {
namespace {

using engine::SqliteStringBuilder;

std::string translate(const sql::ast::Node& tree) {
    return sql::toUtf8(SqliteStringBuilder(QStringLiteral("Locale"), nullptr).buildString(tree));
}

bool isStatement(const sql::ast::NodePtr& tree) {
    using sql::ast::NodeKind;
    return sql::ast::isQuery(tree) || tree->kind == NodeKind::InsertStatement ||
           tree->kind == NodeKind::UpdateStatement || tree->kind == NodeKind::DeleteStatement;
}

TEST(Translation, TextsOfTheFilesBecomeWhatSqliteAccepts) {
    ScratchDatabase database;
    for (const DialectCase& expected : readDialectCases()) {
        if (!expected.error.empty()) {
            continue;
        }
        sql::SqlParser parser(nullptr);
        ASSERT_TRUE(parser.parse(expected.input)) << expected;
        const std::string text = translate(*parser.result().node());
        EXPECT_EQ(text, expected.sqlite) << expected;
        const std::string statement = parser.result().isExpression() ? "Select " + text + " From t" : text;
        EXPECT_EQ(database.prepareError(statement), "") << expected << '\n' << statement;
    }
}

/// Statements made at random name tables and columns that are not there; but SQLite always understands the
/// grammar.
TEST(Translation, RandomStatementsAreGrammarToSqlite) {
    ScratchDatabase database;
    for (unsigned seed = 0; seed < 4000; ++seed) {
        const sql::ast::NodePtr tree = TreeGenerator(seed).statement();
        const std::string text = (isStatement(tree) ? "" : "Select ") + translate(*tree);
        const std::string error = database.prepareError(text);
        EXPECT_EQ(error.find("syntax error"), std::string::npos) << "seed " << seed << ": " << error << '\n'
                                                                 << text;
        EXPECT_EQ(error.find("unrecognized token"), std::string::npos)
            << "seed " << seed << ": " << error << '\n'
            << text;
    }
}

} // namespace
} // namespace orvane::tests
