// Statements that fail are told in the user's words, at the place in the user's text, in both languages.

#include "host/shell/Program.h"
#include "support/TextBlocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace orvane::shell {
namespace {

/// A block of tests/data/shell/errors.txt: the statement up to the line at fault, the mark, the message.
struct ErrorCase {
    QStringList statement;
    QString mark; ///< "-" without place
    QString message;

    std::string expected(const char* place) const {
        if (mark == QLatin1String("-")) {
            return QStringLiteral("orvane: %1\n").arg(message).toStdString();
        }
        return QString::fromUtf8(place)
            .arg(QString::number(statement.size()), QString::number(mark.indexOf(QLatin1Char('^')) + 1),
                 message, statement.last(), mark)
            .toStdString();
    }
};

bool hasCyrillic(const std::string& text) {
    const QString characters = QString::fromStdString(text);
    return std::any_of(characters.begin(), characters.end(),
                       [](QChar character) { return character.script() == QChar::Script_Cyrillic; });
}

TEST(Errors, AreToldInWordsAndPlacesOfTheUser) {
    for (QStringList lines : tests::readBlocks("shell/errors.txt")) {
        const QString message = lines.takeLast();
        const QString mark = lines.takeLast();
        const ErrorCase error{lines, mark, message};
        const QByteArray statement = error.statement.join(QLatin1Char('\n')).toUtf8();
        const Answer english = ask("", statement.constData());
        EXPECT_EQ(english.errors, error.expected("orvane: line %1, column %2: %3\n  %4\n  %5\n"));
        EXPECT_EQ(english.output, "");
        EXPECT_EQ(english.status, 1);

        const std::string russian = ask("--locale ru", statement.constData()).errors;
        EXPECT_TRUE(hasCyrillic(russian)) << russian;
        const std::string place = error.expected("строка %1, столбец %2: ");
        if (error.mark != QLatin1String("-")) {
            EXPECT_THAT(russian, testing::HasSubstr(place.substr(0, place.find(": ") + 2)));
        }
    }
}

} // namespace
} // namespace orvane::shell
