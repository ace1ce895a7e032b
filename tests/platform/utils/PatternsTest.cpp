#include "platform/utils/Patterns.h"

#include "support/TextTable.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <gtest/gtest.h>

using orvane::utils::globToRegular;
using orvane::utils::likeToRegular;

namespace {

bool matches(const QString& expression, const QString& text) {
    const QRegularExpression regular(expression, QRegularExpression::CaseInsensitiveOption);
    EXPECT_TRUE(regular.isValid()) << expression.toStdString();
    return regular.match(text).hasMatch();
}

} // namespace

TEST(Patterns, MatchWhatTheTableSays) {
    for (const orvane::tests::TableRow& row : orvane::tests::readTable("utils/patterns.txt")) {
        const auto& [kind, pattern, text, escape, expected] = row.columns<5>();
        const QString expression = kind == QLatin1String("like")
                                       ? likeToRegular(pattern, escape.isEmpty() ? QChar() : escape[0])
                                       : globToRegular(pattern);
        EXPECT_EQ(matches(expression, text), expected == QLatin1String("1")) << row.place;
    }
}

TEST(Patterns, ManyRunsOverALongTextTakeNoTime) {
    const QString text(100000, QLatin1Char('a'));
    QElapsedTimer timer;
    timer.start();
    for (const char* pattern :
         {"%a%a%a%a%b", "%a%a%a%a%a%a%a%a%b%", "a%aab%", "%_a_%_a_%b", "%aaaaaaaaaaaaaaaab"}) {
        EXPECT_FALSE(matches(likeToRegular(QString::fromLatin1(pattern), {}), text)) << pattern;
    }
    EXPECT_TRUE(matches(likeToRegular(QStringLiteral("%a%a%a%a%"), {}), text));
    EXPECT_TRUE(matches(likeToRegular(QStringLiteral("%a%a%a%a"), {}), text));
    EXPECT_LT(timer.elapsed(), 2000);
}
