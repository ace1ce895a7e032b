#include "host/shell/Program.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

/// A text with its times taken out: they differ from run to run.
QString withoutTimes(QString text) {
    return text.replace(QRegularExpression(QStringLiteral("\\d+\\.\\d+ ms")), QStringLiteral("# ms"));
}

/// Every block of docs/indices.md marked "sql" is followed by what --explain prints for it.
TEST(IndicesDocumentation, ExplanationsAreWhatTheProgramPrints) {
    QFile file(QStringLiteral(ORVANE_DOCUMENTATION "/indices.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const QRegularExpression example(QStringLiteral("^```sql\\n(.*?)^```\\n\\n```explain\\n(.*?)^```"),
                                     QRegularExpression::MultilineOption |
                                         QRegularExpression::DotMatchesEverythingOption);
    const QDir data(QStringLiteral(ORVANE_EXAMPLE_DATA));
    int examples = 0;
    for (auto match = example.globalMatch(text); match.hasNext(); ++examples) {
        const auto found = match.next();
        const Answer answer = runProgram(
            {data.filePath(QStringLiteral("cities.shp")), data.filePath(QStringLiteral("countries.gpkg")),
             data.filePath(QStringLiteral("indicators.csv")), QStringLiteral("--explain"),
             QStringLiteral("-c"), found.captured(1)});
        EXPECT_EQ(withoutTimes(QString::fromStdString(answer.errors)).toStdString(),
                  withoutTimes(found.captured(2)).toStdString())
            << found.captured(1).toStdString();
    }
    EXPECT_EQ(examples, text.count(QStringLiteral("```sql")));
    EXPECT_GE(examples, 4);
}

} // namespace
} // namespace orvane::shell
