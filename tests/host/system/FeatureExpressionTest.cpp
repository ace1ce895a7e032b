#include "support/Host.h"

#include "host/adaptor/FeatureExpression.h"
#include "host/providers/TestLayers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>

#include <set>

namespace orvane {

namespace {

using adaptor::FeatureExpression;
using testing::Host;

/// Two values are the same only with the same type: "1" is not 1.
std::string describe(const QVariant& value) {
    if (value.isNull()) {
        return "NULL";
    }
    const QByteArray text =
        value.userType() == QMetaType::QByteArray ? value.toByteArray().toHex() : value.toString().toUtf8();
    return std::string(value.typeName()) + ':' + text.toStdString();
}

QSqlQuery run(const QString& statement, const QVariant& operand = {}) {
    QSqlQuery query(Host::instance().engine->engineDatabase());
    query.setForwardOnly(true);
    query.prepare(Host::instance().engine->translate(statement));
    if (operand.isValid()) {
        query.bindValue(0, operand);
    }
    EXPECT_TRUE(query.exec()) << statement.toStdString() << ": " << query.lastError().text().toStdString();
    return query;
}

struct TestLine {
    QString table;
    QString expression;
    int line;
};

std::vector<TestLine> readLines() {
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/expressions/values.txt"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    std::vector<TestLine> lines;
    QString table;
    for (int number = 1; !file.atEnd(); ++number) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            table = line.mid(1, line.size() - 2);
        } else if (!line.isEmpty() && !line.startsWith(QLatin1Char('#'))) {
            lines.push_back({table, line, number});
        }
    }
    return lines;
}

bool isAggregate(const QString& expression) {
    return expression.startsWith(QLatin1String("Sum(")) || expression.startsWith(QLatin1String("Count("));
}

class FeatureExpressionTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        Host& host = Host::instance();
        host.openExamples();
        const QString path = host.path(QStringLiteral("types.gpkg"));
        if (!QFile::exists(path)) {
            const files::Format format{"GPKG", "gpkg"};
            files::addLayerOfEveryType(*files::createDataset(format, path), "types", format);
        }
        host.open(path);
    }
    static void TearDownTestSuite() { Host::instance().closeAll(); }

    static std::shared_ptr<dp::Table> table(const char* name) {
        return std::dynamic_pointer_cast<dp::Table>(Host::instance().catalog.dataObject(QLatin1String(name)));
    }
};

} // namespace

TEST_F(FeatureExpressionTest, AgreesWithSelectAndWhereForEveryFeature) {
    std::map<QString, std::vector<dp::FeaturePtr>> features;
    for (const TestLine& test : readLines()) {
        SCOPED_TRACE("values.txt:" + std::to_string(test.line) + ": " + test.expression.toStdString());
        const auto tested = table(test.table.toUtf8().constData());
        ASSERT_TRUE(tested);
        auto& rows = features[test.table];
        if (rows.empty()) {
            rows = Host::features(*tested);
        }
        FeatureExpression expression(*Host::instance().engine, *tested->schema());
        ASSERT_TRUE(expression.setText(test.expression)) << expression.lastError().toStdString();
        const QVector<QVariant> values = expression.values(rows);
        ASSERT_EQ(values.size(), static_cast<int>(rows.size()));

        // One by one as all at once.
        for (std::size_t i = 0; i < rows.size(); i += 7) {
            ASSERT_EQ(describe(expression.value(rows[i])), describe(values[static_cast<int>(i)]));
        }
        if (isAggregate(test.expression)) {
            continue; // a feature is a table of its own
        }

        std::map<std::string, int> counts;
        int trueRows = 0, row = 0;
        QSqlQuery select =
            run(QStringLiteral("Select %0, (%0) Is True From %1").arg(test.expression, test.table));
        for (; select.next(); ++row) {
            ASSERT_EQ(describe(select.value(0)), describe(values.value(row))) << "row " << row;
            ++counts[describe(values.value(row))];
            trueRows += select.value(1).toInt();
        }
        ASSERT_EQ(row, values.size());

        QSqlQuery where =
            run(QStringLiteral("Select Count(*) From %1 Where %0").arg(test.expression, test.table));
        ASSERT_TRUE(where.next());
        EXPECT_EQ(where.value(0).toInt(), trueRows);
        // The rows of the first few values, found by the value.
        std::set<std::string> asked;
        for (int i = 0; i < values.size() && asked.size() < 5; i += 1 + i / 3) {
            if (!asked.insert(describe(values[i])).second || values[i].isNull()) {
                continue;
            }
            QSqlQuery same(Host::instance().engine->engineDatabase());
            same.prepare(Host::instance().engine->translate(
                             QStringLiteral("Select %0 From %1").arg(test.expression, test.table)) +
                         QStringLiteral(" Where (%0) Is ? Collate Binary")
                             .arg(Host::instance().engine->translate(test.expression)));
            same.bindValue(0, values[i]);
            ASSERT_TRUE(same.exec()) << same.lastError().text().toStdString();
            int found = 0;
            for (; same.next(); ++found) {
                EXPECT_EQ(describe(same.value(0)), describe(values[i]));
            }
            EXPECT_EQ(found, counts[describe(values[i])]) << describe(values[i]);
        }
    }
}

TEST_F(FeatureExpressionTest, RefusesWhatIsNoExpressionOfTheTable) {
    const auto cities = table("cities");
    FeatureExpression expression(*Host::instance().engine, *cities->schema());
    for (const char* text : {"Select 1", "name &", "nothing + 1", "NoSuchFunction(name)", ""}) {
        EXPECT_FALSE(expression.setText(QLatin1String(text))) << text;
        EXPECT_FALSE(expression.lastError().isEmpty()) << text;
        EXPECT_EQ(text == std::string("Select 1"),
                  expression.lastError() == QString::fromUtf8("нужно выражение, а не запрос"));
        EXPECT_FALSE(expression.value(Host::features(*cities).front()).isValid()) << text;
    }
    EXPECT_TRUE(expression.setText(QStringLiteral("name")));
}

TEST_F(FeatureExpressionTest, AFeatureThatFailsLeavesTheOthersTheirValues) {
    const auto types = table("types");
    FeatureExpression expression(*Host::instance().engine, *types->schema());
    ASSERT_TRUE(expression.setText(QStringLiteral("whole \\ small")));
    const auto stranger = std::make_shared<dp::Feature>(table("cities")->schema(), dp::FeatureId());
    std::vector<dp::FeaturePtr> features = Host::features(*types);
    features.insert(features.begin() + 1, {stranger, nullptr});
    const QVector<QVariant> values = expression.values(features);
    std::vector<std::string> described;
    for (const QVariant& value : values) {
        described.push_back(value.isValid() ? describe(value) : "none");
    }
    EXPECT_THAT(described,
                ::testing::ElementsAre("NULL", "none", "none", ::testing::StartsWith("qlonglong:-8"),
                                       ::testing::_, "NULL", ::testing::StartsWith("qlonglong:-8")));
}

TEST_F(FeatureExpressionTest, IsNotDisturbedByCatalogueAndTransactions) {
    Host& host = Host::instance();
    const auto cities = table("cities");
    const auto feature = Host::features(*cities).front();
    FeatureExpression expression(*host.engine, *cities->schema());
    ASSERT_TRUE(expression.setText(QStringLiteral("name & (Select Count(*) From countries)")));
    const QVariant before = expression.value(feature);
    host.catalog.close(QStringLiteral("cities"));
    Host::deliverSignals();
    EXPECT_EQ(expression.value(feature), before);
    host.open(QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp"));
    EXPECT_EQ(expression.value(feature), before);

    QSqlQuery query(host.engine->engineDatabase());
    ASSERT_TRUE(query.exec(QStringLiteral("Begin")));
    EXPECT_FALSE(expression.fill(feature));
    ASSERT_TRUE(query.exec(QStringLiteral("Commit")));
    EXPECT_EQ(expression.value(feature), before);
}

TEST_F(FeatureExpressionTest, ItsTableOutlivesItForThoseWhoReadIt) {
    const auto cities = table("cities");
    QSqlQuery reader(Host::instance().engine->engineDatabase());
    {
        FeatureExpression expression(*Host::instance().engine, *cities->schema());
        ASSERT_TRUE(expression.fill(Host::features(*cities).front()));
        ASSERT_TRUE(reader.exec(QStringLiteral("Select name From ") + expression.tableName()));
        ASSERT_TRUE(reader.next());
    }
    EXPECT_FALSE(reader.value(0).toString().isEmpty());
    EXPECT_FALSE(reader.next());
}

} // namespace orvane
