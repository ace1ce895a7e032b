#include "host/shell/Program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

/// A text with its times taken out: they differ from run to run.
QString withoutTimes(QString text) {
    return text.replace(QRegularExpression(QStringLiteral("\\d+\\.\\d+ ms")), QStringLiteral("# ms"));
}

struct Document {
    const char* file;
    const char* answerMark; ///< of the blocks behind those marked "sql"
    bool isExplained;       ///< the answer is what --explain prints
};

class AnswerDocumentation : public testing::TestWithParam<Document> {};

/// Every block marked "sql" is followed by what the program prints for it.
TEST_P(AnswerDocumentation, AnswersAreWhatTheProgramPrints) {
    const Document& document = GetParam();
    QFile file(QStringLiteral(ORVANE_DOCUMENTATION "/") + QLatin1String(document.file));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const QRegularExpression example(
        QStringLiteral("^```sql\\n(.*?)^```\\n\\n```%1\\n(.*?)^```").arg(QLatin1String(document.answerMark)),
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    const QDir data(QStringLiteral(ORVANE_EXAMPLE_DATA));
    int examples = 0;
    for (auto match = example.globalMatch(text); match.hasNext(); ++examples) {
        const auto found = match.next();
        QStringList command{
            data.filePath(QStringLiteral("cities.shp")), data.filePath(QStringLiteral("countries.gpkg")),
            data.filePath(QStringLiteral("indicators.csv")), QStringLiteral("-c"), found.captured(1)};
        if (document.isExplained) {
            command << QStringLiteral("--explain");
        }
        const Answer answer = runProgram(command);
        const QString printed = QString::fromStdString(document.isExplained ? answer.errors : answer.output);
        EXPECT_EQ(withoutTimes(printed).toStdString(), withoutTimes(found.captured(2)).toStdString())
            << found.captured(1).toStdString();
    }
    EXPECT_EQ(examples, text.count(QStringLiteral("```sql")));
    EXPECT_GE(examples, 4);
}

INSTANTIATE_TEST_SUITE_P(Documents, AnswerDocumentation,
                         testing::Values(Document{"indices.md", "explain", true},
                                         Document{"analysis.md", "answer", false}));

/// Blocks that begin with "$ orvane" show a command, which goes on until its quotes are closed, and what it
/// prints.
TEST(ConsoleDocumentation, CommandsPrintWhatIsShown) {
    const QDir root(QStringLiteral(ORVANE_DOCUMENTATION "/.."));
    const QRegularExpression example(
        QStringLiteral("^```\\n\\$ (orvane [^\"\\n]*(?:\"[^\"]*\"[^\"\\n]*)*)\\n(.*?)^```"),
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    QStringList files{QStringLiteral("README.md")};
    for (const QString& name :
         QDir(root.filePath(QStringLiteral("docs"))).entryList({QStringLiteral("*.md")})) {
        files += QStringLiteral("docs/") + name;
    }
    int examples = 0;
    for (const QString& name : files) {
        QFile file(root.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        const QString text = QString::fromUtf8(file.readAll());
        for (auto match = example.globalMatch(text); match.hasNext();) {
            const auto found = match.next();
            if (found.captured(2).isEmpty()) {
                continue;
            }
            ++examples;
            QProcess shell;
            shell.setWorkingDirectory(root.path());
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
            shell.setProcessEnvironment(environment);
            shell.start(
                QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"),
                 QStringLiteral("orvane() { \"" ORVANE_PROGRAM "\" \"$@\"; }\n") + found.captured(1)});
            ASSERT_TRUE(shell.waitForFinished(120'000));
            EXPECT_EQ(shell.readAllStandardOutput().toStdString(), found.captured(2).toStdString())
                << name.toStdString() << ": " << found.captured(1).toStdString();
        }
    }
    EXPECT_GE(examples, 3);
}

} // namespace
} // namespace orvane::shell
