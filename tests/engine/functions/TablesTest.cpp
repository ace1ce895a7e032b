#include "SqlFunctions.h"

#include <QDir>
#include <QFile>
#include <QLocale>

#include <gtest/gtest.h>

#include <cstdlib>

using orvane::test::SqlFunctions;

namespace {

/// The files below tests/data/functions: "expression => result" a line, "#" a comment, "@locale NAME" the
/// default locale from there on, "\uXXXX" a code unit.
class TablesTest : public testing::TestWithParam<const char*> {
protected:
    void TearDown() override { QLocale::setDefault(QLocale::c()); }
};

QString unescaped(QString text) {
    for (int at = text.indexOf(QLatin1String("\\u")); at >= 0;
         at = text.indexOf(QLatin1String("\\u"), at + 1)) {
        text.replace(at, 6, QChar(text.mid(at + 2, 4).toUShort(nullptr, 16)));
    }
    return text;
}

TEST_P(TablesTest, EveryLineHolds) {
    QLocale::setDefault(QLocale::c());
    const SqlFunctions functions;
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/functions/") + QLatin1String(GetParam()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    int checked = 0;
    for (int number = 1; !file.atEnd(); ++number) {
        QString line = QString::fromUtf8(file.readLine());
        line.chop(line.endsWith(QLatin1Char('\n')) ? 1 : 0);
        if (line.startsWith(QLatin1String("@locale "))) {
            QLocale::setDefault(QLocale(line.mid(8)));
        } else if (!line.isEmpty() && !line.startsWith(QLatin1Char('#'))) {
            const int arrow = line.lastIndexOf(QLatin1String(" => "));
            ASSERT_GT(arrow, 0) << GetParam() << ':' << number;
            EXPECT_EQ(unescaped(line.mid(arrow + 4)).toStdString(),
                      functions.evaluate(unescaped(line.left(arrow))).toStdString())
                << GetParam() << ':' << number << ": " << line.toStdString();
            ++checked;
        }
    }
    EXPECT_GT(checked, 0);
}

INSTANTIATE_TEST_SUITE_P(Functions, TablesTest,
                         testing::Values("arithmetic.txt", "text.txt", "dates.txt", "formats.txt"));

} // namespace
