// Changes of a server's tables.

#include "host/postgres/PostgresHost.h"

#include "platform/dp/Table.h"

namespace orvane {

namespace {

using ::testing::HasSubstr;
using testing::Host;

class PostgresEditTest : public testing::PostgresHost {
protected:
    void SetUp() override {
        PostgresHost::SetUp();
        if (!testing::TestServer::instance()) {
            return;
        }
        server().sql(
            "Create Table t (id serial Primary Key, name varchar(10), n numeric(8,2) Default 5, day date, "
            "at timestamp, flag bool, raw bytea, tags text[], g geometry(MultiPolygon, 4326));"
            "Insert Into t(name) Values ('один'), ('два'), ('три');"
            "Create Table pairs (a text, b date, v int Check (v < 100), Primary Key (a, b));"
            "Insert Into pairs Values ('x', '2024-01-01', 1), ('y', '2024-01-02', 2);"
            "Create Table plain (v int); Create View seen As Select * From t");
        tables_ = open();
    }
    std::shared_ptr<dp::Table> table(const char* name) const {
        for (const auto& each : tables_) {
            if (each->name() == QLatin1String(name)) {
                return each;
            }
        }
        return nullptr;
    }

    std::vector<std::shared_ptr<postgres::PostgresTable>> tables_;
};

TEST_F(PostgresEditTest, WritesValuesOfAllTypes) {
    EXPECT_EQ(
        ask("Insert Into t(name, n, day, at, flag, raw, tags, obj) Values ('Ёж ''\"', 1.25, '2024-02-29', "
            "'2024-02-29 01:02:03.004', 1, X'00ff', '[\"a b\", \"ж\"]', "
            "GeomFromText('POLYGON((0 0, 1 0, 1 1, 0 0))', 4326))"),
        "");
    EXPECT_EQ(server().sql("Select id, name, n, day, at, flag, raw, tags, ST_AsEWKT(g) From t Where id > 3"),
              "4|Ёж '\"|1.25|2024-02-29|2024-02-29 01:02:03.004|t|\\x00ff|{\"a b\",ж}|"
              "SRID=4326;MULTIPOLYGON(((0 0,1 0,1 1,0 0)))");
    EXPECT_EQ(ask("Update t Set name = name & '!', day = Null Where id In (2, 4)"), "");
    EXPECT_EQ(ask("Insert Into pairs(a, b, v) Values ('z', '2024-01-03', 3)"), "");
    EXPECT_EQ(ask("Update pairs Set v = v + 10 Where a <> 'x'"), "");
    EXPECT_EQ(ask("Delete From pairs Where v = 12"), "");
    EXPECT_EQ(ask("Delete From t Where id = 1"), "");
    EXPECT_EQ(server().sql("Select id, name, n, day From t Order By id"),
              "2|два!|5.00|NULL\n3|три|5.00|NULL\n4|Ёж '\"!|1.25|NULL");
    EXPECT_EQ(server().sql("Select * From pairs Order By a"), "x|2024-01-01|1\nz|2024-01-03|13");
    EXPECT_EQ(ask("Select Count(*), Sum(id) From t"), "3|9");
    for (const char* refused :
         {"Insert Into plain(v) Values (1)", "Update seen Set name = 'x'",
          "Insert Into t(name) Values ('больше десяти знаков')", "Insert Into t(tags) Values ('no list')",
          "Insert Into pairs(a) Values ('x')", "Update pairs Set v = 1000", "Update t Set id = 2"}) {
        EXPECT_THAT(ask(refused), HasSubstr("error")) << refused;
    }
    EXPECT_EQ(server().sql("Select Count(*), Sum(id) From t"), "3|9");
}

/// Statements of the dialect, and what another connection sees after each.
TEST_F(PostgresEditTest, TransactionsTakeAllOrNothing) {
    struct Step {
        const char* statement;
        const char* seen; ///< names, values of the pairs
    };
    constexpr Step steps[] = {
        {"Begin", "один,два,три|1,2"},
        {"Update t Set name = 'a' Where id = 1", "один,два,три|1,2"},
        {"Update pairs Set v = 7 Where a = 'x'", "один,два,три|1,2"},
        {"Savepoint s", "один,два,три|1,2"},
        {"Delete From t", "один,два,три|1,2"},
        {"Insert Into pairs(a, b, v) Values ('q', '2024-01-01', 1000)", nullptr},
        {"Insert Into pairs(a, b, v) Values ('q', '2024-01-01', 4)", "один,два,три|1,2"},
        {"Rollback To s", "один,два,три|1,2"},
        {"Insert Into t(name) Values ('b')", "один,два,три|1,2"},
        {"Commit", "a,два,три,b|7,2"},
        {"Begin", "a,два,три,b|7,2"},
        {"Delete From t", "a,два,три,b|7,2"},
        {"Rollback", "a,два,три,b|7,2"},
        {"Delete From t Where id > 1", "a|7,2"},
    };
    for (const Step& step : steps) {
        const QString first = QString::fromUtf8(step.statement).section(QLatin1Char(' '), 0, 0);
        const bool isTransaction = QStringLiteral("Begin Savepoint Rollback Commit").contains(first);
        const std::string answer = isTransaction ? run(step.statement) : ask(step.statement);
        if (!step.seen) {
            EXPECT_THAT(answer, HasSubstr("error")) << step.statement;
            continue;
        }
        EXPECT_EQ(answer, "") << step.statement;
        EXPECT_EQ(server().sql(
                      "Select string_agg(name, ',' Order By id), (Select string_agg(v::text, ',' Order By a) "
                      "From pairs) From t"),
                  step.seen)
            << step.statement;
    }
}

TEST_F(PostgresEditTest, ShowsItsOwnChanges) {
    EXPECT_EQ(run("Begin"), "");
    EXPECT_EQ(ask("Update t Set name = 'a' Where id = 1"), "");
    EXPECT_EQ(ask("Select name From t Order By id"), "a\nдва\nтри");
    EXPECT_EQ(ask("Insert Into t(name) Select name From t"), "");
    EXPECT_EQ(ask("Select Count(*) From t"), "6");
    EXPECT_EQ(run("Rollback"), "");
    EXPECT_EQ(ask("Select Count(*), Min(name) From t"), "3|два");
}

TEST_F(PostgresEditTest, RefusesWhatOthersHaveChangedMeanwhile) {
    EXPECT_EQ(run("Begin"), "");
    EXPECT_EQ(ask("Update t Set name = 'a' Where id = 1"), "");
    server().sql("Update t Set name = 'b' Where id = 2");
    EXPECT_THAT(ask("Update t Set name = 'c' Where id = 2"), HasSubstr("concurrent update"));
    EXPECT_EQ(run("Commit"), "");
    EXPECT_EQ(server().sql("Select name From t Order By id"), "a\nb\nтри");
}

TEST_F(PostgresEditTest, LosesNothingWithTheServer) {
    EXPECT_EQ(run("Begin"), "");
    EXPECT_EQ(ask("Update t Set name = 'a' Where id = 1"), "");
    server().kill();
    EXPECT_THAT(ask("Update t Set name = 'a' Where id = 2"), HasSubstr("соединени"));
    server().start();
    EXPECT_THAT(ask("Update t Set name = 'a' Where id = 3"), HasSubstr("error"));
    EXPECT_THAT(run("Commit"), HasSubstr("error"));
    run("Rollback");
    EXPECT_EQ(ask("Select name From t Order By id"), "один\nдва\nтри");
    EXPECT_EQ(ask("Update t Set name = 'a' Where id = 2"), "");
    EXPECT_EQ(server().sql("Select name From t Order By id"), "один\na\nтри");
}

/// The server ends while it commits: after a while it is back, and tells what became of the edits.
TEST_F(PostgresEditTest, TellsWhetherACutCommitWasMade) {
    server().sql(
        "Create Function die() Returns Trigger Language plpgsql As $$ Begin Perform pg_terminate_backend("
        "pg_backend_pid()); Return Null; End $$; Create Constraint Trigger die After Update On pairs "
        "Deferrable Initially Deferred For Each Row Execute Function die()");
    EXPECT_THAT(ask("Update pairs Set v = 50"), HasSubstr("error"));
    EXPECT_EQ(server().sql("Select Sum(v) From pairs"), "3");
    EXPECT_EQ(ask("Update t Set name = 'a' Where id = 2"), "");
}

} // namespace

} // namespace orvane
