#include "support/Application.h"
#include "support/CapturedLog.h"
#include "support/MemoryTable.h"

#include "platform/decimal/QDecNumber.h"
#include <orvane/engine/EngineExpression.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QPoint>
#include <QSqlDriver>
#include <QSqlQuery>

#include <sqlite3.h>

#include <cmath>

namespace orvane::engine {

namespace {

using testing::attribute;

QSqlDatabase database() {
    return testing::Application::instance().engine->engineDatabase();
}

EngineCache* cache() {
    return testing::Application::instance().engine->cache();
}

std::shared_ptr<dp::TableSchema> townSchema() {
    return std::make_shared<dp::TableSchema>(QVector<dp::AttributeDefinitionPointer>{
        attribute("name", QMetaType::QString), attribute("odd \" name", QMetaType::LongLong),
        attribute("founded", QMetaType::QDate),
        dp::AttributeDefinitionPointer(new dp::GeometryAttributeDefinition(QStringLiteral("shape"), nullptr)),
        dp::AttributeDefinitionPointer(new dp::RenditionAttributeDefinition(QStringLiteral("pen")))});
}

dp::FeaturePtr town(const std::shared_ptr<dp::TableSchema>& schema, const QVariant& name,
                    const QVariant& people, const QVariant& founded = {}) {
    auto feature = std::make_shared<dp::Feature>(schema, dp::FeatureId(1));
    feature->setAttribute(0, name);
    feature->setAttribute(1, people);
    feature->setAttribute(2, founded);
    return feature;
}

} // namespace

TEST(EngineExpression, ComputesForOneFeatureAfterAnother) {
    const auto schema = townSchema();
    EngineExpression expression(database(), *schema, cache());
    ASSERT_TRUE(expression.isValid()) << expression.lastError().toStdString();
    EXPECT_EQ(expression.geoName(), QStringLiteral("shape"));
    EXPECT_EQ(expression.styleName(), QStringLiteral("pen"));
    ASSERT_TRUE(
        expression.setExpression(QStringLiteral("name || ' ' || (\"odd \"\" name\" + 1) || ' ' || founded")));
    EXPECT_EQ(expression.type(), QVariant::String);
    ASSERT_TRUE(expression.fill(town(schema, QStringLiteral("Ёлкино 😀"), 7LL, QDate(2020, 2, 29))));
    EXPECT_EQ(expression.exec(), QVariant(QStringLiteral("Ёлкино 😀 8 2020-02-29")));
    ASSERT_TRUE(expression.fill(town(schema, QStringLiteral("x"), QVariant())));
    EXPECT_TRUE(expression.exec().isNull());
    ASSERT_TRUE(expression.setExpression(QStringLiteral("name = 'X' Collate Locale")));
    EXPECT_EQ(expression.exec().toInt(), 1); // another expression over the same row
}

TEST(EngineExpression, ValuesOfAnotherClassThanTheirColumnAreConvertedAsInATable) {
    const auto schema = townSchema();
    EngineExpression expression(database(), *schema, cache());
    const auto kinds = [&](const QVariant& name, const QVariant& people) {
        return expression.fill(town(schema, name, people)) ? expression.exec().toString().toStdString() : "";
    };
    for (const char* text : {"typeof(name) || typeof(\"odd \"\" name\")", // from the values or the table
                             "typeof(name) || typeof(\"odd \"\" name\") || substr('', rowid)"}) {
        ASSERT_TRUE(expression.setExpression(QLatin1String(text)));
        EXPECT_EQ(kinds(QStringLiteral("x"), 7), "textinteger");
        EXPECT_EQ(kinds(8.5, QStringLiteral(" 9 ")), "textinteger");
        EXPECT_EQ(kinds(QByteArray("b"), 2.5), "blobreal");
        EXPECT_EQ(kinds(QVariant(), QStringLiteral("many")), "nulltext");
    }
}

TEST(EngineExpression, TwoOverOneSchemaDoNotMeet) {
    const auto schema = townSchema();
    EngineExpression a(database(), *schema, cache()), b(database(), *schema, cache());
    EXPECT_NE(a.tableName(), b.tableName());
    EXPECT_EQ(a.columns().size(), 5);
    EXPECT_EQ(a.columns().at(3), QStringLiteral("cd750f8a9a2b4fac9b9b05eb53795d97"));
}

TEST(EngineExpression, NeedsNoTableWithoutAttributes) {
    EngineExpression expression(database(), dp::TableSchema(), cache());
    EXPECT_TRUE(expression.tableName().isEmpty());
    EXPECT_TRUE(expression.columns().isEmpty());
    EXPECT_TRUE(expression.setExpression(QStringLiteral("1 + 1")));
    EXPECT_TRUE(expression.fill(nullptr));
    EXPECT_EQ(expression.exec().toInt(), 2);
}

TEST(EngineExpression, FailuresAreReportedAndLogged) {
    const tests::CapturedLog log;
    const auto schema = townSchema();
    EngineExpression expression(database(), *schema, cache());
    EXPECT_FALSE(expression.setExpression(QStringLiteral("nope + 1")));
    EXPECT_THAT(expression.lastError().toStdString(), ::testing::HasSubstr("nope"));
    EXPECT_TRUE(log.entries.empty());

    ASSERT_TRUE(expression.setExpression(QStringLiteral("name")));
    const auto wider = std::make_shared<dp::TableSchema>(
        schema->attributes() + QVector<dp::AttributeDefinitionPointer>{attribute("more", QMetaType::Int)});
    ASSERT_TRUE(expression.fill(town(schema, QStringLiteral("x"), 1)));
    EXPECT_FALSE(expression.fill(town(wider, QStringLiteral("y"), 1))); // the table is empty afterwards
    EXPECT_FALSE(expression.exec().isValid());
    ASSERT_EQ(log.entries.size(), 2u);
    EXPECT_THAT(log.entries[0].text.toStdString(), ::testing::StartsWith("Expression error: "));
    EXPECT_THAT(log.entries[1].text.toStdString(), ::testing::StartsWith("Expression exec error: "));
    EXPECT_EQ(log.entries[1].sourceFile, QStringLiteral("EngineExpression"));
}

TEST(EngineExpression, AFeatureOfAnotherSchemaLeavesNothingBehind) {
    const auto schema = townSchema();
    EngineExpression expression(database(), *schema, cache());
    ASSERT_TRUE(expression.setExpression(QStringLiteral("name")));
    const auto other = std::make_shared<dp::TableSchema>(QVector<dp::AttributeDefinitionPointer>{
        attribute("name", QMetaType::QString), attribute("other", QMetaType::Int)});
    const auto bare = std::make_shared<dp::TableSchema>();
    EXPECT_FALSE(expression.fill(std::make_shared<dp::Feature>(other, dp::FeatureId(1))));
    expression.fill(std::make_shared<dp::Feature>(bare, dp::FeatureId(1)));
    EXPECT_TRUE(expression.exec().isNull());
    ASSERT_TRUE(expression.fill(town(schema, QStringLiteral("x"), 1)));
    EXPECT_EQ(expression.exec(), QVariant(QStringLiteral("x")));
}

TEST(EngineExpression, AllAtOnceAsOneByOneUntilCancelled) {
    static const auto cancel = [](sqlite3_context* context, int, sqlite3_value** arguments) {
        if (sqlite3_value_int(arguments[0]) == 25) {
            testing::Application::instance().engine->cancelQuery();
        }
        sqlite3_result_value(context, arguments[0]);
    };
    auto* handle = *static_cast<sqlite3* const*>(database().driver()->handle().constData());
    sqlite3_create_function(handle, "cancelAt25", 1, SQLITE_UTF8, nullptr, cancel, nullptr, nullptr);
    testing::Application::instance().engine->allowFunctions({QStringLiteral("cancelAt25")});
    const auto schema = townSchema();
    std::vector<dp::FeaturePtr> features;
    for (int i = 0; i < 40; ++i) {
        features.push_back(town(schema, QStringLiteral("n%0").arg(i), i));
    }
    EngineExpression expression(database(), *schema, cache());
    QSqlQuery reader(database());
    const QString table = expression.tableName();
    for (const char* text :
         {"\"odd \"\" name\"", "name || (Select \"odd \"\" name\" From %0)",
          "Case When name > 'n3' Then (Select Max(name) From %0) Else 'no' End",
          "name In (Select name From %0 Where \"odd \"\" name\" < 9)", "Count(*)", "rowid"}) {
        SCOPED_TRACE(text);
        ASSERT_TRUE(expression.setExpression(QString::fromLatin1(text).replace(QLatin1String("%0"), table)));
        // Whoever reads other columns of the table meanwhile does not matter.
        ASSERT_TRUE(reader.exec(QStringLiteral("Select * From ") + table));
        const QVector<QVariant> values = expression.execAll(features);
        for (int i = 0; i < values.size(); ++i) {
            ASSERT_TRUE(expression.fill(features[static_cast<std::size_t>(i)]));
            ASSERT_EQ(values[i], expression.exec()) << i;
            ASSERT_TRUE(values[i].isValid());
        }
    }
    reader.finish(); // as long as it is under way, a cancellation goes on
    for (const char* text : {"cancelAt25(\"odd \"\" name\")", // in one execution, and in one for each
                             "cancelAt25((Select \"odd \"\" name\" From %0))"}) {
        ASSERT_TRUE(expression.setExpression(QString::fromLatin1(text).replace(QLatin1String("%0"), table)));
        const QVector<QVariant> values = expression.execAll(features);
        EXPECT_EQ(values[24].toInt(), 24) << text;
        for (int i = 26; i < values.size(); ++i) {
            EXPECT_FALSE(values[i].isValid()) << text << ' ' << i;
        }
    }
}

TEST(EngineExpression, NotANumberIsNull) {
    const dp::TableSchema schema({attribute("t", QMetaType::QString), attribute("i", QMetaType::Int),
                                  attribute("r", QMetaType::Double), attribute("b", QMetaType::QByteArray)});
    const auto feature =
        std::make_shared<dp::Feature>(std::make_shared<dp::TableSchema>(schema), dp::FeatureId());
    EngineExpression expression(database(), schema, cache());
    for (const QVariant& none : {QVariant(std::nan("")), QVariant(std::nanf(""))}) {
        for (int i = 0; i < 4; ++i) {
            feature->setAttribute(i, none);
        }
        for (const char* text : {"Coalesce(t, i, r, b)", "Coalesce(t, i, r, b, substr(NULL, rowid))"}) {
            ASSERT_TRUE(expression.setExpression(QLatin1String(text)));
            ASSERT_TRUE(expression.fill(feature));
            EXPECT_TRUE(expression.exec().isNull()) << text;
        }
    }
}

TEST(EngineExpression, ColumnsOfAnyNameAreFoundByTheirFieldName) {
    for (const char* name : {"Area [m2]", "a.b", "\"q\"", "[z]", "it's", "Ключ", "x]y", "select"}) {
        const auto schema = std::make_shared<dp::TableSchema>(
            QVector<dp::AttributeDefinitionPointer>{attribute(name, QMetaType::QString)});
        EngineExpression expression(database(), *schema, cache());
        ASSERT_TRUE(expression.setExpression(expression.fieldName(schema->at(0)) + QStringLiteral("||'!'")))
            << expression.lastError().toStdString();
        auto feature = std::make_shared<dp::Feature>(schema, dp::FeatureId());
        feature->setAttribute(0, QStringLiteral("x"));
        ASSERT_TRUE(expression.fill(feature));
        EXPECT_EQ(expression.exec(), QVariant(QStringLiteral("x!"))) << name;
        EXPECT_EQ(expression.columns(), QStringList(QString::fromUtf8(name)));
    }
}

TEST(EngineExpression, WritesLiteralsAndBindsValues) {
    EngineExpression expression(database(), dp::TableSchema(), cache());
    const struct {
        QVariant value;
        const char* literal;
        QVariant bound;
    } cases[] = {
        {true, "1", 1},
        {QVariant::fromValue<short>(-3), "-3", -3},
        {QVariant::fromValue<uchar>(200), "200", 200u},
        {Q_INT64_C(-9223372036854775807), "-9223372036854775807", Q_INT64_C(-9223372036854775807)},
        {0.1 + 0.2, "0.3", 0.1 + 0.2},
        {1234567.0, "1.23457e+06", 1234567.0},
        {QStringLiteral("it's"), "'it''s'", QStringLiteral("it's")},
        {QVariant(), "''", QString()},
        {QTime(5, 6, 7, 8), "'05:06:07.008'", QStringLiteral("05:06:07.008")},
        {QVariant::fromValue(QDecNumber::fromString(QStringLiteral("12.50"))), "12.50", 12.5},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(expression.toStr(test.value).toStdString(), test.literal);
        EXPECT_EQ(expression.toValue(test.value), test.bound) << test.literal;
    }
}

TEST(EngineExpression, HooksWriteWhatTheEngineDoesNotKnow) {
    class Pointed : public EngineExpression {
    public:
        using EngineExpression::EngineExpression;
        ExtensionString toExtensionString(const QVariant& value) override {
            return {QString::number(value.toPoint().x()), value.userType() == QMetaType::QPoint,
                    value.toPoint().y() != 0};
        }
        QVariant toExtensionValue(const QVariant& value) override {
            return value.userType() == QMetaType::QPoint ? QVariant(value.toPoint().x()) : QVariant();
        }
    };
    Pointed expression(database(), dp::TableSchema(), cache());
    EXPECT_EQ(expression.toStr(QPoint(4, 0)), QStringLiteral("4"));
    EXPECT_EQ(expression.toStr(QPoint(4, 1)), QStringLiteral("'4'"));
    EXPECT_EQ(expression.toStr(QChar(QLatin1Char('x'))), QStringLiteral("'x'"));
    EXPECT_EQ(expression.toValue(QPoint(4, 0)), QVariant(4));
    EXPECT_EQ(expression.toValue(QChar(QLatin1Char('x'))), QVariant(QStringLiteral("x")));
}

} // namespace orvane::engine
