#include "host/desk/query/Completion.h"
#include "host/desk/query/QueryHistory.h"
#include "host/desk/query/SqlHighlighter.h"
#include "host/desk/session/QueryFault.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <gmock/gmock.h>

namespace orvane::desk {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(Completion, OffersWhatCanStandAtThePlace) {
    TableInfo cities;
    cities.name = QStringLiteral("cities");
    cities.columns = {{QStringLiteral("name"), {}}, {QStringLiteral("population"), {}}};
    TableInfo odd;
    odd.name = QStringLiteral("Моя таблица");
    odd.columns = {{QStringLiteral("name local"), {}}, {QStringLiteral("номер"), {}}};
    const TableInfos tables{cities, odd};
    struct Case {
        const char* query; ///< "|" is the cursor
        const char* offered;
        const char* notOffered;
    };
    const Case cases[] = {
        {"Select na| From cities", "name", "\"name local\""},
        {"Select c.| From cities c", "population", "номер"},
        {"Select c.po| From cities c, \"Моя таблица\" m", "population", "номер"},
        {"Select m.| From cities c, \"Моя таблица\" m", "\"name local\"", "population"},
        {"Select 1; Select \"Моя таблица\".но| From \"Моя таблица\"", "номер", "population"},
        {"Select x.|", "population", "Select"}, // an alias before From
        {"Sel|", "Select", "cities"},
        {"Select Upp|", "Upper", "Select"},
        {"Select * From Мо|", "\"Моя таблица\"", "cities"},
        {"Select * From sel|", "Selection", "cities"},
        {"Select '🙂', ci| From cities", "cities", "name"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.query);
        QString query = QString::fromUtf8(each.query);
        const int position = query.indexOf(QLatin1Char('|'));
        query.remove(position, 1);
        const std::string offered = complete(query, position, tables, {QStringLiteral("Upper")})
                                        .candidates.join(QLatin1Char('\n'))
                                        .toStdString();
        EXPECT_THAT(offered, HasSubstr(each.offered));
        EXPECT_THAT(offered, Not(HasSubstr(each.notOffered)));
    }
}

TEST(QueryHistory, KeepsQueriesFromOneSessionToTheNext) {
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("new/history.json"));
    {
        QueryHistory history(path);
        EXPECT_TRUE(history.add(QStringLiteral("Select 'é 🙂'\nFrom a")));
        EXPECT_TRUE(history.add(QStringLiteral("b")));
        EXPECT_TRUE(history.add(QStringLiteral("Select 'é 🙂'\nFrom a"))); // again
    }
    const QStringList expected{QStringLiteral("b"), QStringLiteral("Select 'é 🙂'\nFrom a")};
    EXPECT_EQ(QueryHistory(path).queries(), expected);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[\"damaged");
    file.close();
    EXPECT_TRUE(QueryHistory(path).queries().isEmpty());
    EXPECT_TRUE(QFile::exists(path + QStringLiteral(".bad")));
    EXPECT_FALSE(QueryHistory(directory.path()).add(QStringLiteral("x"))); // no file can be there
}

TEST(SyntaxFault, HasItsPlaceInTheWholeText) {
    struct Case {
        const char* text;
        int line, column, length;
    };
    const Case cases[] = {
        {"Select 1 Form t", 1, 10, 4},
        {"Select 1;\n  Select * Fro", 2, 12, 3},
        {"Select '🙂', 1 +* 2", 1, 16, 1},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.text);
        const auto fault = syntaxFault(each.text);
        ASSERT_TRUE(fault && fault->place);
        EXPECT_EQ(fault->place->line, each.line);
        EXPECT_EQ(fault->place->column, each.column);
        EXPECT_EQ(fault->place->length, each.length);
        EXPECT_FALSE(fault->message.contains(QStringLiteral("строка")));
    }
    EXPECT_FALSE(syntaxFault("Select 1; -- end\n"));
    EXPECT_FALSE(syntaxFault(""));
}

/// The letters of a line by their colours: a new letter for each colour, " " for none.
std::string colours(const QTextDocument& document, int line) {
    const QTextBlock block = document.findBlockByNumber(line);
    QString shown(block.text().size(), QLatin1Char(' '));
    static QVector<QRgb> known;
    for (const auto& range : block.layout()->formats()) {
        const QRgb colour = range.format.foreground().color().rgb();
        if (!known.contains(colour)) {
            known += colour;
        }
        shown.replace(range.start, range.length,
                      QString(range.length, QLatin1Char(static_cast<char>('a' + known.indexOf(colour)))));
    }
    return shown.toStdString();
}

TEST(SqlHighlighter, FollowsTheLexer) {
    QTextDocument document;
    document.documentLayout(); // without one nobody is told of changes
    const SqlHighlighter highlighter(&document);
    document.setPlainText(
        QStringLiteral("Select 'a', Upper(n)\n/* x\ny */ From \"t\" -- Select\n'🙂' , 12"));
    QCoreApplication::processEvents();
    EXPECT_EQ(colours(document, 0), "aaaaaa bbb  ccccc   ");
    EXPECT_EQ(colours(document, 1), "dddd");
    EXPECT_EQ(colours(document, 2), "dddd aaaa eee ddddddddd");
    EXPECT_EQ(colours(document, 3), "bbbb   ff");
    QTextCursor cursor(document.findBlockByNumber(1)); // the comment is opened no more
    cursor.deleteChar();
    cursor.deleteChar();
    QCoreApplication::processEvents();
    EXPECT_EQ(colours(document, 1), "  ");
    EXPECT_EQ(colours(document, 2).substr(5, 4), "aaaa");
}

} // namespace
} // namespace orvane::desk
