// The same query over tables of the server, which takes conditions over, and over ordinary tables of SQLite
// with the same rows and declaration: the answers are the same rows.

#include "host/adaptor/ConditionGenerator.h"
#include "host/postgres/PostgresHost.h"

#include "host/adaptor/declaration/TableDeclaration.h"

#include <QElapsedTimer>

namespace orvane::testing {

namespace {

/// Two tables of the same names of columns: with the usual types, and with those that compare otherwise.
constexpr const char* tables = R"(
Select setseed(0.42);
Create Function pick(choices anyarray) Returns anyelement Language sql Volatile As
    $$ Select Case When random() < 0.15 Then Null Else choices[1 + floor(random() * cardinality(choices))::int] End $$;
Create Table usual As Select n As id, pick(Array[0, 1, -1, 2, 3, 12, 13, 1000]) As i,
    pick(Array[0, 12, 9007199254740992, 9007199254740993, 9223372036854775807, -9223372036854775808, -1]) As big,
    pick(Array[0.0, '-0.0', 1.5, 2.0, 0.1, 1e300, -1e-9, 'NaN', 'Infinity', 9007199254740992.0]::float8[]) As r,
    pick(Array['', 'a', 'A', 'Ёлка', 'ЁЛКА', 'Еж', 'ель', 'Straße', 'strasse', 'é', 'e', '1', '12', '1.5', ' 12', 'x_y', '🚲', 'b''c', 'я']) As s,
    pick(Array['2021-03-04', '2021-03-04 05:06:07.000', '12', 'b', 'B']) As t,
    pick(Array['2021-03-04', '2020-02-29', '1999-12-31', '0044-03-15 BC', 'infinity', '12021-03-04']::date[]) As d,
    pick(Array[true, false]) As f, pick(Array['a', '']::bytea[]) As x,
    pick(Array['SRID=4326;Point(3 4)', 'SRID=4326;Point(7 8)', 'SRID=4326;Point(11 2)', 'SRID=4326;Point Empty']::geometry(Point, 4326)[]) As geom
    From generate_series(1, 1100) n;
Alter Table usual Add Primary Key (id); Alter Table usual Alter geom Type geometry(Point, 4326);
Create Index On usual (i); Create Index On usual (d); Create Index On usual (s); Create Index On usual Using gist (geom);
Create Table other As Select id, i::numeric(9) As i, (big / 10)::numeric(18) As big, r::numeric As r, s::varchar(20) As s, t::char(24) As t,
    pick(Array['2021-03-04', '2021-03-04 05:06:07', '2021-03-04 05:06:07.0000005', '2020-02-29 23:59:59.999', '-infinity']::timestamp[]) As d,
    f, x, geom From usual Where r Is Distinct From 'Infinity' Or id % 2 = 0;
Create Index On other (r); Create Index On other (d);
Create View seen As Select id, i::int2 As i, big, (Case When Abs(r) < 1e30 Then r End)::float4 As r, s::text, t, d::timestamptz As d, f, x, geom::geography As geom From other;
)";

class ServerConditionTest : public PostgresHost {
protected:
    void SetUp() override {
        PostgresHost::SetUp();
        if (!TestServer::instance()) {
            return;
        }
        server().sql("Alter Role postgres Set TimeZone = 'Europe/Berlin'");
        server().sql(tables);
        server().sql("Analyze");
        for (const auto& table : open()) {
            makePlain(*table);
        }
    }
    void TearDown() override {
        PostgresHost::TearDown();
        for (const QString& name : names_) {
            ownAnswer(database(), QStringLiteral("Drop Table plain_") + name);
        }
        if (TestServer::instance()) {
            server().sql("Alter Role postgres Reset All");
        }
    }

    static QSqlDatabase database() { return Host::instance().engine->engineDatabase(); }

    void makePlain(const dp::Table& table) {
        QString sql = QString::fromStdString(adaptor::TableDeclaration(*table.schema()).sql());
        sql.replace(0, QStringLiteral("Create Table x(").size(),
                    QStringLiteral("Create Table plain_%0(").arg(table.name()));
        ASSERT_EQ(ownAnswer(database(), sql), "");
        names_ += table.name();
        const QString columns =
            QStringLiteral("id, i, big, r, s, t, d, f, x, cd750f8a9a2b4fac9b9b05eb53795d97");
        ASSERT_EQ(ownAnswer(database(), QStringLiteral("Insert Into plain_%0(%1) Select %1 From %0")
                                            .arg(table.name(), columns)),
                  "");
    }

    std::vector<std::string> rowsOf(QString query, const char* prefix) {
        const QString text = query.replace(QLatin1String("%0"), QLatin1String(prefix));
        QStringList lines = QString::fromStdString(Host::instance().ask(text)).split(QLatin1Char('\n'));
        lines.sort();
        std::vector<std::string> rows;
        for (const QString& line : lines) {
            rows.push_back(line.toStdString());
        }
        return rows;
    }
    void expectSame(const std::string& query, unsigned seed) {
        const auto expected = rowsOf(QString::fromStdString(query), "plain_");
        ASSERT_EQ(expected.front().find("error"), std::string::npos) << expected.front() << '\n' << query;
        EXPECT_EQ(rowsOf(QString::fromStdString(query), ""), expected) << "seed " << seed << ": " << query;
    }

    QStringList names_;
};

TEST_F(ServerConditionTest, ConditionsFindTheRowsThatAPlainTableFinds) {
    for (unsigned seed = 0; seed < 900 && !HasFailure(); ++seed) {
        ConditionGenerator generator(seed);
        const std::string table = names_.at(static_cast<int>(seed % 3)).toStdString();
        const std::string from = " From %0" + table + " a Where " + generator.condition("a", 2);
        const std::string column = generator.column("a");
        switch (seed % 4) {
        case 0: expectSame("Select Count(*), Min(" + column + ")" + from, seed); break;
        case 1: expectSame("Select a.id" + from + " Order By " + column + ", a.id Limit 7", seed); break;
        default: expectSame("Select a.id" + from, seed);
        }
    }
}

/// Every comparison that the server takes over, at and beside the values that it compares otherwise.
TEST_F(ServerConditionTest, ComparisonsFindTheRowsThatAPlainTableFinds) {
    struct Column {
        const char* name;
        std::vector<const char*> operands;
    };
    const Column columns[] = {
        {"i", {"0", "2.5", "12", "-1e300"}},
        {"big", {"9007199254740992", "9007199254740992.0", "900719925474099", "9223372036854775807"}},
        {"r", {"0.1", "0", "1e300", "-1e-9", "9e999"}},
        {"d",
         {"'2021-03-04'", "'2021-03-04 05:06:07'", "'2021-03-04 05:06:07.000'", "'1999-12-31'", "'2021'"}},
        {"f", {"0", "1"}},
        {"s Collate Binary", {"'Ёлка'", "''"}},
    };
    for (const Column& column : columns) {
        for (const char* operation : {" < ", " <= ", " > ", " >= ", " = ", " <> ", " Is ", " Is Not "}) {
            for (const char* operand : column.operands) {
                for (const QString& table : names_) {
                    expectSame("Select a.id From %0" + table.toStdString() + " a Where a." + column.name +
                                   operation + operand,
                               0);
                }
            }
        }
    }
}

TEST_F(ServerConditionTest, JoinsFindTheRowsThatPlainTablesFind) {
    for (unsigned seed = 0; seed < 90 && !HasFailure(); ++seed) {
        ConditionGenerator generator(seed);
        const std::string left = names_.at(generator.below(3)).toStdString();
        const std::string right = names_.at(generator.below(3)).toStdString();
        const std::string few = "a.id < " + std::to_string(5 + generator.below(30));
        const std::string on = generator.joinCondition("a", "b");
        const std::string more = generator.condition("b", 1);
        expectSame("Select a.id, b.id From %0" + left + (seed % 2 ? " a Left Join %0" : " a Join %0") +
                       right + " b On " + on + " And (" + more + ") Where " + few,
                   seed);
    }
}

} // namespace

} // namespace orvane::testing
