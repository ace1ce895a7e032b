#include "AdaptorFixture.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

namespace orvane {

namespace {

using testing::attribute;
using testing::MemoryTable;

/// A table that only says how large it is.
class SizedTable : public MemoryTable {
public:
    SizedTable(QString name, std::int64_t rows)
        : MemoryTable(std::move(name),
                      {attribute("id", QMetaType::LongLong, {.unique = true}),
                       attribute("number", QMetaType::LongLong), attribute("other", QMetaType::LongLong),
                       attribute("third", QMetaType::LongLong), attribute("word", QMetaType::QString),
                       dp::AttributeDefinitionPointer(
                           new dp::GeometryAttributeDefinition(QStringLiteral("shape"), nullptr))}),
          rows_(rows) {}

    std::optional<std::int64_t> featureCount() const override { return rows_; }

private:
    std::int64_t rows_;
};

struct Join {
    const char* tables;    ///< written in the right order, with their aliases, separated by ", "
    const char* condition; ///< g stands for the geometry column
    const char* order;     ///< the aliases from the outermost to the innermost
};

class JoinOrderTest : public testing::AdaptorTest {
protected:
    void SetUp() override {
        AdaptorTest::SetUp();
        for (const auto& [name, rows] :
             {std::pair("ten", 10), {"thousands", 10'000}, {"million", 1'000'000}}) {
            catalog().add(std::make_shared<SizedTable>(QString::fromLatin1(name), rows));
        }
        QCoreApplication::processEvents();
    }

    /// The aliases in the order in which SQLite nests them, with subqueries behind the tables around them.
    static QString chosenOrder(const QString& sql) {
        static const QRegularExpression scan(QStringLiteral("^(?:SCAN|SEARCH) (\\w+)\\b"));
        QSqlQuery query(engine().engineDatabase());
        EXPECT_TRUE(query.exec(QStringLiteral("Explain Query Plan ") + sql))
            << query.lastError().text().toStdString();
        QStringList aliases;
        while (query.next()) {
            const auto match = scan.match(query.value(3).toString());
            if (match.hasMatch()) {
                aliases += match.captured(1);
            }
        }
        return aliases.join(QLatin1Char(' '));
    }

    static QString condition(const char* text) {
        QString sql = QString::fromUtf8(text);
        return sql.replace(QRegularExpression(QStringLiteral("\\bg\\b")),
                           QStringLiteral("cd750f8a9a2b4fac9b9b05eb53795d97"));
    }
};

} // namespace

TEST_F(JoinOrderTest, IsTheRightOneHoweverItIsWritten) {
    const Join joins[] = {
        // The smaller table outside, the larger one looked up.
        {"ten a, thousands b", "a.number = b.number", "a b"},
        {"ten a, million b", "a.number = b.number", "a b"},
        {"thousands a, million b", "a.number = b.number", "a b"},
        {"thousands a, million b", "a.word = b.word", "a b"},
        {"ten a, million b", "a.word = b.word", "a b"},
        {"ten a, million b", "a.number < b.number", "a b"},
        {"ten a, million b", "a.number > 0", "a b"},
        // A condition that leaves little outside, even of the larger table.
        {"million a, thousands b", "a.number = b.number And a.id = 5", "a b"},
        {"million a, thousands b", "a.number = b.number And a.rowid = 5", "a b"},
        {"thousands a, million b", "a.number = b.number And b.number = 7", "b a"},
        // Relations find the rows of their first argument.
        {"ten a, million b", "ST_Within(b.g, a.g)", "a b"},
        {"ten a, million b", "CentroidWithin(b.g, a.g)", "a b"},
        {"million a, ten b", "ST_Contains(b.g, a.g)", "a b"},
        {"ten a, thousands b", "ST_Intersects(b.g, a.g)", "a b"},
        {"ten a, thousands b, million c", "ST_Within(b.g, a.g) And c.number = b.id", "a b c"},
        // Three and four tables.
        {"ten a, thousands b, million c", "a.id = b.number And b.id = c.number", "a b c"},
        {"ten a, thousands b, million c", "a.id = c.number And b.id = c.other", "a c b"},
        {"million a, thousands b, ten c", "a.id = 5 And b.id = a.number And c.id = b.number", "a b c"},
        {"ten a, million b, thousands c, ten d",
         "a.word = 'x' And a.id = b.number And c.number = b.other And d.id = b.third", "a b d c"},
        {"thousands a, million b, thousands c, million d",
         "a.id = 1 And b.number = a.id And c.id = b.other And d.number = c.id", "a b c d"},
    };
    for (const Join& join : joins) {
        QStringList tables = QString::fromLatin1(join.tables).split(QStringLiteral(", "));
        std::sort(tables.begin(), tables.end());
        do {
            const QString sql = QStringLiteral("Select 1 From %0 Where %1")
                                    .arg(tables.join(QStringLiteral(", ")), condition(join.condition));
            EXPECT_EQ(chosenOrder(sql).toStdString(), join.order) << sql.toStdString();
        } while (std::next_permutation(tables.begin(), tables.end()));
    }
}

TEST_F(JoinOrderTest, OfOuterJoinsAndSubqueriesKeepsTheLargeTableInside) {
    struct Case {
        const char* sql;
        const char* order;
    };
    const Case cases[] = {
        {"Select 1 From ten a Left Join million b On b.number = a.number", "a b"},
        {"Select a.word From million b Left Join ten a On a.id = b.number", "b a"},
        {"Select 1 From million b Left Join ten a On a.id = b.number", "b"}, // a unique key that nobody reads
        {"Select 1 From thousands c, ten a Left Join million b On b.number = a.number Where c.number = a.id",
         "a c b"},
        {"Select 1 From ten a, thousands c Left Join million b On b.number = a.number Where c.number = a.id",
         "a c b"},
        {"Select 1 From ten a Left Join million b On ST_Within(b.g, a.g)", "a b"},
        {"Select 1 From thousands a Where Exists (Select 1 From million b Where b.number = a.number)", "a b"},
        {"Select 1 From million b Where b.number In (Select id From ten)", "b ten"},
        {"Select (Select Max(b.other) From million b Where b.number = a.id) From ten a", "a b"},
        {"Select 1 From ten a Where a.number > (Select Count(*) From thousands c, million b "
         "Where c.number = a.id And b.number = c.id)",
         "a c b"},
        {"Select 1 From (Select a.id i From ten a, thousands c Where c.number = a.id Limit 5) d, million b "
         "Where b.number = d.i",
         "a c d b"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(chosenOrder(condition(each.sql)).toStdString(), each.order) << each.sql;
    }
}

} // namespace orvane
