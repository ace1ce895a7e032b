#include "platform/sql/TreeDump.h"
#include "platform/sql/TreeGenerator.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "platform/sql/printing/SqlStringBuilder.h"

#include <gtest/gtest.h>

namespace orvane::tests {
namespace {

using namespace sql;

TEST(RoundTrip, PrintedTreesParseBackEqual) {
    constexpr unsigned trees = 4000;
    for (unsigned seed = 0; seed < trees; ++seed) {
        const ast::NodePtr tree = TreeGenerator(seed).statement();
        const std::string text = toUtf8(SqlStringBuilder(nullptr).buildString(*tree));
        SqlParser parser(nullptr);
        ASSERT_TRUE(parser.parse(text)) << "seed " << seed << ": " << text << '\n'
                                        << parser.errors().front()->what();
        ASSERT_EQ(toUtf8(dumpTree(*parser.result().node())), toUtf8(dumpTree(*tree)))
            << "seed " << seed << ": " << text;
    }
}

} // namespace
} // namespace orvane::tests
