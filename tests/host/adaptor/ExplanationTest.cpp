#include "AdaptorFixture.h"

#include "host/adaptor/explaining/StatementExplanation.h"
#include "platform/geometry/shapes/Shapes.h"

#include <QRegularExpression>
#include <QSqlDriver>

#include <gmock/gmock.h>

namespace orvane {

namespace {

using testing::attribute;
using testing::MemoryTable;

class ExplanationTest : public testing::AdaptorTest {
protected:
    void SetUp() override {
        AdaptorTest::SetUp();
        std::vector<MemoryTable::Row> rows;
        for (qlonglong i = 0; i < 4000; ++i) {
            rows.push_back({i / 2, QStringLiteral("имя%0").arg(i), QByteArray("x"), QVariant()});
        }
        const auto open = [this](const char* name, std::vector<MemoryTable::Row> with) {
            return AdaptorTest::open(
                name,
                {attribute("number", QMetaType::LongLong), attribute("word", QMetaType::QString),
                 attribute("bytes", QMetaType::QByteArray),
                 dp::AttributeDefinitionPointer(
                     new dp::GeometryAttributeDefinition(QStringLiteral("shape"), nullptr))},
                std::move(with));
        };
        items_ = open("items", rows);
        open("few", {rows.begin(), rows.begin() + 3});
    }

    static QString explain(const char* sql) {
        auto* database =
            *static_cast<sqlite3* const*>(engine().engineDatabase().driver()->handle().constData());
        const adaptor::StatementExplanation explanation(database, sql);
        ask(sql);
        return explanation.lines().join(QLatin1Char('\n'));
    }

    std::shared_ptr<MemoryTable> items_;
};

} // namespace

TEST_F(ExplanationTest, TellsHowEachTableWasAnsweredAndWhyNotBetter) {
    struct Case {
        const char* sql;
        const char* pattern; ///< of the whole explanation
    };
    const Case cases[] = {
        {"Select 1", "одна строка без таблицы"},
        {"Select * From items", "items: просмотр всей таблицы\n  строк 4000, ожидалось 4000"},
        {"Select * From items i Where i.rowid = 5",
         "items i: поиск по номеру строки\n  строк [01], ожидалось 1"},
        {"Select * From items Where number = NULL", "items: условие не выполнимо\n  строк 0, ожидалось 25"},
        {"Select * From items Where number = 7",
         "items: просмотр всей таблицы\n  строк 2, ожидалось 25, прочитано 4000\n"
         "  нет индекса для number: просмотры пока дешевле \\(0.\\d+ мс\\), чем его сделать \\(3.80 мс\\)"},
        {"Select * From items Where word = 'имя7' Collate Binary",
         "items: .*\n  .*\n  нет индекса для word =: тексты сравниваются не по Locale"},
        {"Select * From items Where word <> 'имя1' And bytes > 1",
         "items: .*\n  .*\n  нет индекса для bytes >: столбцы этого типа не индексируются\n"
         "  нет индекса для word <>: такое сравнение он не ускоряет"},
        {"Select * From items Where word Like '%мя''1' And number Like '1%'",
         "items: .*\n  .*\n  нет индекса для number Like '1%': такое сравнение он не ускоряет\n"
         "  нет индекса для word Like '%мя''1': с начала такого образца в индексе не найти"},
        {"Select * From items Where word Like NULL", "items: условие не выполнимо\n  строк 0, .*"},
        {"Select * From few f, items i Where i.word Glob '*' || f.word",
         "few f: .*\n  .*\nitems i: .*\n  .*\n"
         "  нет индекса для word Glob: с начала такого образца в индексе не найти"},
        {"Select * From items Where number > 'слово'",
         "items: .*\n  .*\n  нет индекса для number >: значение не того типа, что столбец"},
        {"Select * From few Where number In (1, 2)",
         "few: .*\n  .*\n  нет индекса для number In: таблица мала"},
        {"Select * From few, items Where items.number = few.number + 0.5",
         "few: просмотр всей таблицы\n  .*\n"
         "items: просмотр всей таблицы, раз: 3\n  строк 0, ожидалось 25 на раз, прочитано 12000\n"
         "  нет индекса для number: просмотры пока дешевле .*"},
        {"Select * From (Select Max(number) n From items) a, few Where few.rowid = a.n Order By few.word",
         "запрос a:\n  items: .*\n    .*\na: все строки\nfew: (?:.|\n)*\nсортировка для ORDER BY"},
        {"Select Distinct number From items",
         "items: просмотр всей таблицы\n  строк 4000, ожидалось 4000\n  строки сгруппированы в памяти"
         "(?:\nсортировка для DISTINCT)?"},
        {"Select (Select Count(*) From items i Where i.number = f.number) From few f",
         "few f: .*\n  .*\nподзапрос 1, заново для каждой строки:\n  items i: .*\n    (?:.|\n)*"},
        {"Select * From few a Left Join items b On b.number = a.number And a.number < 0",
         "few a: .*\n  .*\nitems b: (?:.|\n)*"},
    };
    for (const Case& each : cases) {
        const QString text = explain(each.sql);
        const QRegularExpression whole(QRegularExpression::anchoredPattern(QString::fromUtf8(each.pattern)));
        EXPECT_TRUE(whole.match(text).hasMatch()) << each.sql << "\n" << text.toStdString();
    }
}

TEST_F(ExplanationTest, TellsAnIndexThatWasMadeFromOneThatWasThere) {
    const char* sql = "Select Count(*) From items a, few b Where a.number = b.number";
    QString text;
    for (int round = 0; round < 3000 && !text.contains(QStringLiteral("сделан")); ++round) {
        text = explain(sql);
    }
    EXPECT_TRUE(
        text.contains(QRegularExpression(QStringLiteral("индекс по number \\(сделан сейчас за .* мс\\)"))))
        << text.toStdString();
    EXPECT_TRUE(explain(sql).contains(
        QStringLiteral("items a: индекс по number (был), раз: 3\n  строк 6, ожидалось 2 на раз")))
        << explain(sql).toStdString();
    EXPECT_TRUE(
        explain("Select * From items Where number > 5")
            .contains(QStringLiteral("индекс по number не годится: он нашёл бы слишком много строк")));
}

TEST_F(ExplanationTest, TestsTheFirstRowsAskedForByPlaceBeforeItMakesATree) {
    std::vector<MemoryTable::Row> rows;
    for (qlonglong i = 0; i < 6000; ++i) {
        rows.push_back(
            {i, testing::wkb(geometry::Point(static_cast<double>(i % 100), static_cast<double>(i / 100)))});
    }
    open("places", {attribute("id", QMetaType::LongLong), testing::geometryAttribute(4326)}, rows);
    const std::string dialect =
        "Select Count(*) From places Where obj Intersects BuildMbr(9.5, 9.5, 12.5, 11.5, 4326)";
    const std::string sql = engine().translate(dialect).toStdString();
    const std::string first = explain(sql.c_str()).toStdString();
    EXPECT_THAT(first, ::testing::HasSubstr("places: просмотр рамок геометрии\n  строк 6, "));
    EXPECT_THAT(first, ::testing::HasSubstr("прочитано 6000"));
    EXPECT_THAT(explain(sql.c_str()).toStdString(),
                ::testing::HasSubstr("R-дерево по геометрии (сделан сейчас"));
}

TEST_F(ExplanationTest, TellsPatternsThatAnIndexAnswers) {
    const char* sql = "Select Count(*) From items Where word Like 'ИМЯ39%'";
    QString text;
    for (int round = 0; round < 50 && !text.contains(QStringLiteral("(был)")); ++round) {
        text = explain(sql);
    }
    EXPECT_EQ(text, QStringLiteral("items: индекс по word, Like 'ИМЯ39%' (был)\n  строк 111, ожидалось 111"));
    EXPECT_TRUE(explain("Select Count(*) From few a, items b Where b.word Like a.word || '%'")
                    .contains(QStringLiteral("items b: индекс по word, Like (был), раз: 3\n  строк 2223, ")));
}

TEST_F(ExplanationTest, RecordsOnlyTheStatementThatWasAskedFor) {
    auto* database = *static_cast<sqlite3* const*>(engine().engineDatabase().driver()->handle().constData());
    const adaptor::StatementExplanation broken(database, "Select nothing From nowhere");
    EXPECT_TRUE(broken.lines().isEmpty());
    const adaptor::StatementExplanation unused(database, "Select * From items; Select * From few");
    EXPECT_EQ(unused.lines(), QStringList{QStringLiteral("items: не понадобилась")});
}

} // namespace orvane
