// What docs/functions.md and docs/formats.md say of values, the shell prints.

#include "host/shell/Program.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

struct Example {
    std::string place;
    QString expression;
    QString result;
};

/// "`expression` is `result`", or "is empty".
std::vector<Example> readExamples(const QString& document) {
    QFile file(QStringLiteral(ORVANE_DOCUMENTATION "/") + document);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QRegularExpression form(QStringLiteral("`([^`]+)` is (?:`([^`]*)`|empty)"));
    std::vector<Example> examples;
    for (int line = 1; !file.atEnd(); ++line) {
        const QString text = QString::fromUtf8(file.readLine());
        for (auto found = form.globalMatch(text); found.hasNext();) {
            const auto match = found.next();
            examples.push_back(
                {document.toStdString() + ':' + std::to_string(line), match.captured(1), match.captured(2)});
        }
    }
    return examples;
}

class FormulaDocumentation : public testing::TestWithParam<std::pair<const char*, const char*>> {};

/// All in one run of the shell: a line for each.
TEST_P(FormulaDocumentation, ExamplesGiveTheirResults) {
    const auto& [document, locale] = GetParam();
    const std::vector<Example> examples = readExamples(QString::fromLatin1(document));
    ASSERT_GT(examples.size(), 50U);
    QStringList command{QStringLiteral("--locale"),    QString::fromLatin1(locale),
                        QStringLiteral("--no-header"), QStringLiteral("-F"),
                        QStringLiteral("csv"),         QStringLiteral("--null"),
                        QStringLiteral("NULL")};
    for (const Example& example : examples) {
        command << QStringLiteral("-c") << QStringLiteral("Select ") + example.expression;
    }
    const Answer answer = runProgram(command);
    EXPECT_EQ(answer.errors, "");
    const QStringList lines = QString::fromStdString(answer.output).split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), static_cast<int>(examples.size()) + 1);
    for (std::size_t i = 0; i < examples.size(); ++i) {
        QString given = lines[static_cast<int>(i)];
        if (given.startsWith(QLatin1Char('"')) && given.endsWith(QLatin1Char('"'))) {
            given = given.mid(1, given.size() - 2).replace(QLatin1String("\"\""), QLatin1String("\""));
        }
        EXPECT_EQ(given.toStdString(), examples[i].result.toStdString())
            << examples[i].place << ": " << examples[i].expression.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Documents, FormulaDocumentation,
                         testing::Values(std::pair("functions.md", "C"), std::pair("formats.md", "en_US")));

} // namespace
} // namespace orvane::shell
