#include "SqlFunctions.h"

#include "support/DefaultLocale.h"
#include "support/TextTable.h"

#include <gtest/gtest.h>

using namespace orvane::tests;

namespace {

/// The files below tests/data/functions: "expression => result" a line, or "@locale NAME", the default locale
/// from there on.
class TablesTest : public testing::TestWithParam<const char*> {};

TEST_P(TablesTest, EveryLineHolds) {
    const DefaultLocale locale("C");
    SqlFunctions functions;
    for (const TableRow& row : readTable(GetParam(), QStringLiteral(" => "))) {
        if (row.fields.size() == 1) {
            DefaultLocale::set(row.fields[0].section(QLatin1Char(' '), 1));
            continue;
        }
        using Cache = orvane::engine::EngineCache;
        for (const auto memo : {Cache::NoMemo, Cache::AlwaysMemo}) {
            functions.cache().setUseGaiaCache(memo);
            EXPECT_EQ(row.text(1), functions.evaluate(row.fields[0]).toStdString())
                << row.place << ": " << row.text(0) << ", memo mode " << memo;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Functions, TablesTest,
                         testing::Values("functions/arithmetic.txt", "functions/text.txt",
                                         "functions/dates.txt", "functions/formats.txt",
                                         "functions/geometry.txt"));

} // namespace
