#include "AdaptorFixture.h"

#include "host/adaptor/explaining/StatementExplanation.h"

#include <QDate>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlQuery>

#include <memory>
#include <random>

namespace orvane {

namespace {

using testing::attribute;
using testing::MemoryTable;

/// Gives samples, unless it is told to fail.
class SampledTable : public MemoryTable {
public:
    using MemoryTable::MemoryTable;

    std::unique_ptr<dp::SampleCursor> openSample(const std::vector<int>& attributes,
                                                 std::int64_t rows) override {
        ++samples;
        if (fails) {
            throw std::runtime_error("the disk is broken");
        }
        dp::ScanRequest all;
        all.attributes = attributes;
        return std::make_unique<EveryFew>(openCursor(all), std::max<std::int64_t>(1, *featureCount() / rows));
    }

    int samples = 0;
    bool fails = false;

private:
    class EveryFew : public dp::SampleCursor {
    public:
        EveryFew(std::unique_ptr<dp::Cursor> rows, std::int64_t step)
            : rows_(std::move(rows)), step_(static_cast<int>(step)) {}
        bool next() override {
            ++run_;
            std::uniform_int_distribution<int> skipped(0, 2 * (step_ - 1));
            for (int i = skipped(random_); i > 0 && rows_->next(); --i) {
            }
            return rows_->next();
        }
        dp::Cell cell(int position) override { return rows_->cell(position); }
        dp::FeatureId featureId() override { return rows_->featureId(); }
        std::int64_t run() const override { return run_; }

    private:
        std::unique_ptr<dp::Cursor> rows_;
        int step_;
        std::int64_t run_ = -1;
        std::mt19937 random_; // NOLINT: the same sample in every run
    };
};

class ValueEstimatesTest : public testing::AdaptorTest {
protected:
    void SetUp() override {
        AdaptorTest::SetUp();
        constexpr int numRows = 20'000;
        std::vector<MemoryTable::Row> rows;
        for (int i = 0; i < numRows; ++i) {
            const QString kind = i < 20       ? QStringLiteral("автомагистраль")
                                 : i % 3 == 0 ? QStringLiteral("Улица")
                                              : QStringLiteral("Проезд %0").arg(i % 40);
            rows.push_back({qlonglong{i}, i % 100, i % 10 == 0 ? QVariant() : QVariant(i * 0.25), kind,
                            QDate(2001, 1, 1).addDays(i % 5000), QStringLiteral("К-%0").arg(i)});
        }
        things_ = std::make_shared<SampledTable>(
            QStringLiteral("things"),
            QVector<dp::AttributeDefinitionPointer>{
                attribute("id", QMetaType::LongLong, {.unique = true}),
                attribute("number", QMetaType::LongLong), attribute("size", QMetaType::Double),
                attribute("kind", QMetaType::QString), attribute("built", QMetaType::QDate),
                attribute("code", QMetaType::QString)},
            rows);
        EXPECT_TRUE(catalog().add(things_));
        QCoreApplication::processEvents();
        open("few", {attribute("number", QMetaType::LongLong), attribute("word", QMetaType::QString)},
             {{1, QStringLiteral("К-1")}, {2, QStringLiteral("К-2")}, {3, QStringLiteral("К-3")}});
    }

    std::shared_ptr<SampledTable> things_;
};

} // namespace

TEST_F(ValueEstimatesTest, AreCloseToWhatIsFound) {
    auto* database = *static_cast<sqlite3* const*>(engine().engineDatabase().driver()->handle().constData());
    const char* const conditions[] = {
        "kind = 'автомагистраль'",
        "kind = 'УЛИЦА'",
        "kind = 'Проезд 7'",
        "kind <> 'Улица'",
        "kind = 'нет такой'",
        "kind Is Null",
        "kind Is Not Null",
        "kind >= 'Проезд 1' And kind < 'Проезд 2'",
        "size Is Null",
        "size Is Not Null",
        "size Is NULL And number < 50",
        "size = 77.75",
        "size > 100 And size < 110",
        "size Between 1000 And 1500",
        "size > 1e9",
        "size < 2500",
        "size >= 200 And size >= 4000",
        "number = 5",
        "number = '5'",
        "number = 5.5",
        "number > 90",
        "number <> 5",
        "number In (1, 2, 3, 4)",
        "number = NULL",
        "id = 700",
        "id > 100 And id <= 150",
        "built = '2001-07-01'",
        "built >= '2005-01-01' And built < '2006-01-01'",
        "code = 'К-77'",
        "code = 77",
        "number = 5 And kind = 'Улица'",
    };
    const QRegularExpression expectation(QStringLiteral("things.*\n  строк \\d+, ожидалось (\\d+)"));
    const auto expectClose = [&](const std::string& condition, double scans) {
        const std::string sql = "Select Count(*) From " + condition;
        const adaptor::StatementExplanation explanation(database, sql.c_str());
        const double rows = std::max(1.0, std::stod(ask(sql)) / scans);
        const QString text = explanation.lines().join(QLatin1Char('\n'));
        const double expected = expectation.match(text).captured(1).toDouble();
        EXPECT_TRUE(expected >= rows / 10 && expected <= rows * 10) << sql << ": " << rows << "\n"
                                                                    << text.toStdString();
    };
    for (const char* condition : conditions) {
        expectClose(std::string("things Where ") + condition, 1);
    }
    for (const char* condition : {"t.number = f.number", "t.code = f.word", "t.id = f.number",
                                  "t.code = f.word And t.kind Like 'улица'"}) {
        expectClose(std::string("few f Cross Join things t Where ") + condition, 3);
    }
}

TEST_F(ValueEstimatesTest, OneIndexOnAKeyServesWhateverElseIsAsked) {
    const std::string join = "Select Count(*) From few f, things t Where t.code = f.word And ";
    for (int round = 0; round < 3000 && !things_->lastRequest.ids; ++round) {
        EXPECT_EQ(ask(join + "t.kind = 'автомагистраль'"), "3");
    }
    for (const char* other : {"t.number = 2", "t.kind = 'АВТОМАГИСТРАЛЬ' And t.number = 1", "True"}) {
        things_->lastRequest.ids.reset();
        ask(join + other);
        EXPECT_TRUE(things_->lastRequest.ids) << other;
    }
}

TEST_F(ValueEstimatesTest, AreMadeOnceWhereTablesAreJoined) {
    const auto samplesOf = [this](const char* sql) {
        QSqlQuery query(engine().engineDatabase());
        const int before = things_->samples;
        EXPECT_TRUE(query.exec(QString::fromUtf8(sql))) << sql;
        while (query.next()) {
        }
        return things_->samples - before;
    };
    for (const char* alone :
         {"Select Count(*) From things", "Select * From things Where kind = 'Улица' And size > 5",
          "Select * From things Where number In (1, 2) And built Is Null Limit 3",
          "Select kind, Count(*) From things Group By kind",
          "Select * From things t, few Order By t.id Limit 1"}) {
        EXPECT_EQ(samplesOf(alone), 0) << alone;
    }
    const char* const join =
        "Select Count(*) From things t, few f Where t.number = f.number And t.kind = 'Улица'";
    EXPECT_EQ(samplesOf(join), 1);
    EXPECT_EQ(samplesOf(join), 0);
    EXPECT_EQ(samplesOf("Update things Set kind = 'Улица' Where rowid = 0"), 0);
    EXPECT_EQ(samplesOf(join), 1) << "the table has changed";

    things_->fails = true;
    EXPECT_EQ(samplesOf("Update things Set kind = 'Улица' Where rowid = 1"), 0);
    EXPECT_EQ(samplesOf(join), 1) << "the query goes on";
    EXPECT_EQ(samplesOf(join), 0) << "what failed is not tried again";
}

} // namespace orvane
