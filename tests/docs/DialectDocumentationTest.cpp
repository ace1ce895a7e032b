#include "host/shell/Program.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

struct Example {
    int line = 0; ///< in docs/dialect.md
    bool changes = false;
    QString statement;
};

/// The blocks of docs/dialect.md marked "sql"; those that change tables are marked "sql change".
std::vector<Example> readExamples() {
    QFile file(QStringLiteral(ORVANE_DOCUMENTATION "/dialect.md"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QString text = QString::fromUtf8(file.readAll());
    const QRegularExpression block(QStringLiteral("^```sql( change)?\\n(.*?)^```"),
                                   QRegularExpression::MultilineOption |
                                       QRegularExpression::DotMatchesEverythingOption);
    std::vector<Example> examples;
    for (auto match = block.globalMatch(text); match.hasNext();) {
        const auto found = match.next();
        const int line = static_cast<int>(text.left(found.capturedStart()).count(QLatin1Char('\n'))) + 1;
        examples.push_back({line, !found.captured(1).isEmpty(), found.captured(2).trimmed()});
    }
    return examples;
}

QStringList arguments(const QString& statement) {
    const QDir data(QStringLiteral(ORVANE_EXAMPLE_DATA));
    return {data.filePath(QStringLiteral("cities.shp")), data.filePath(QStringLiteral("countries.gpkg")),
            data.filePath(QStringLiteral("indicators.csv")), QStringLiteral("-c"), statement};
}

/// An example that answers nothing explains nothing, so each has to give rows. Examples that would change the
/// files are translated only.
TEST(DialectDocumentation, ExamplesRun) {
    const std::vector<Example> examples = readExamples();
    ASSERT_GT(examples.size(), 30u);
    for (const Example& example : examples) {
        QStringList command = arguments(example.statement);
        command << QStringLiteral("--no-header") << QStringLiteral("-F") << QStringLiteral("csv");
        if (example.changes) {
            command << QStringLiteral("--translate");
        }
        const Answer answer = runProgram(command);
        EXPECT_EQ(answer.status, 0) << "docs/dialect.md:" << example.line << '\n' << answer.errors;
        EXPECT_FALSE(answer.output.empty()) << "docs/dialect.md:" << example.line << " gives no row";
    }
}

} // namespace
} // namespace orvane::shell
