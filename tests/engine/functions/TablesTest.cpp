#include "SqlFunctions.h"

#include "support/DefaultLocale.h"
#include "support/TextTable.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

using namespace orvane::tests;

namespace {

/// The files below tests/data/functions: "expression => result" a line, "@locale NAME", the default locale
/// from there on, or "@zone NAME", the time zone from there on. All other lines hold in every zone.
class TablesTest : public testing::TestWithParam<std::tuple<const char*, const char*>> {};

TEST_P(TablesTest, EveryLineHolds) {
    const auto& [file, zone] = GetParam();
    const DefaultLocale locale("C");
    const TimeZone timeZone(zone);
    SqlFunctions functions;
    for (const TableRow& row : readTable(file, QStringLiteral(" => "))) {
        if (row.fields.size() == 1) {
            const QString name = row.fields[0].section(QLatin1Char(' '), 1);
            if (row.fields[0].startsWith(QLatin1String("@locale"))) {
                DefaultLocale::set(name);
            } else {
                TimeZone::set(name.isEmpty() ? zone : name.toLatin1().constData());
            }
            continue;
        }
        using Cache = orvane::engine::EngineCache;
        for (const auto memo : {Cache::NoMemo, Cache::AlwaysMemo}) {
            functions.cache().setUseGaiaCache(memo);
            EXPECT_EQ(row.text(1), functions.evaluate(row.fields[0]).toStdString())
                << row.place << ": " << row.text(0) << ", memo mode " << memo << ", zone " << zone;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Functions, TablesTest,
    testing::Combine(testing::Values("functions/arithmetic.txt", "functions/text.txt", "functions/dates.txt",
                                     "functions/formats.txt", "functions/geometry.txt",
                                     "functions/making.txt", "functions/measures.txt", "functions/lines.txt",
                                     "functions/overlay.txt", "functions/access.txt", "functions/forms.txt",
                                     "functions/editing.txt", "functions/shaping.txt"),
                     testing::ValuesIn(zones)));

} // namespace
