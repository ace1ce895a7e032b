#include "engine/indices/IndexMatching.h"
#include "engine/indices/IndexSql.h"
#include "platform/decimal/QDecNumber.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvane::engine {

namespace {

using Column = EngineIndices::Column;

std::string print(const std::vector<Column>& columns) {
    std::string text;
    for (const Column& column : columns) {
        text += std::to_string(column.attribute) + ":" + std::to_string(column.operation) + " ";
    }
    return text;
}

TEST(NormalizedColumns, KeepEachValidAttributeOnceWithEqualitiesFirst) {
    struct Case {
        std::vector<Column> columns;
        std::string normalized;
    };
    const std::vector<Case> cases = {
        {{}, ""},
        {{{10, 1}, {9, 1}}, "9:1 "},                            // beyond the schema of 10
        {{{1, 0}, {2, 11}, {3, 10}, {4, 255}}, "3:10 "},        // codes that are none
        {{{3, 5}, {3, 1}}, "3:1 "},                             // the smaller code wins
        {{{3, 3}, {5, 6}, {3, 1}, {7, 2}}, "3:1 7:2 5:6 "},     // a merged equality moves to the front
        {{{5, 9}, {3, 4}, {1, 2}, {0, 1}}, "1:2 0:1 5:9 3:4 "}, // the order inside both groups is kept
        {{{3, 6}, {3, 5}, {2, 7}, {2, 3}}, "3:5 2:3 "},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(print(normalizedColumns(test.columns, 10)), test.normalized) << print(test.columns);
    }
}

TEST(MatchIndex, ScoresTheLeadingEqualitiesAndOneColumnMore) {
    struct Case {
        IndexColumns index;
        std::vector<Column> wanted; ///< normalized
        double score;
        bool equalityOnly;
    };
    const std::vector<Case> cases = {
        {{3}, {{3, 1}}, 1.0, true},
        {{3}, {}, 1.0, true}, // no condition
        {{3}, {{3, 1}, {5, 1}}, 0.5, true},
        {{3, 5}, {{5, 1}, {3, 1}}, 1.0, true}, // the order of the request does not matter
        {{3, 5, 7}, {{3, 1}}, 1.0, true},      // a longer index serves, too
        {{5, 3}, {{3, 1}}, 0.0, false},        // but not with another column in front
        {{3, 5}, {{3, 1}, {5, 3}}, 1.0, false},
        {{3}, {{3, 1}, {5, 3}}, 0.5, false},
        {{3, 5, 7}, {{3, 1}, {7, 3}}, 1.0, false}, // the last column counts, whatever lies between
        {{3, 7, 5}, {{3, 1}, {7, 3}}, 0.5, false},
        {{5}, {{5, 9}, {7, 3}}, 1.0, false}, // one of several ranges is all that an index can serve
        {{3}, {{1, 1}, {3, 5}}, 0.0, false}, // a range without the equality
        {{}, {{3, 1}}, 0.0, false},
    };
    for (const Case& test : cases) {
        const EngineIndices::Conformance match = matchIndex(test.index, test.wanted);
        EXPECT_EQ(match.score, test.score) << print(test.wanted);
        EXPECT_EQ(match.equalityOnly, test.equalityOnly) << print(test.wanted);
    }
}

TEST(SqlLiteral, WritesEveryTypeAsSqlReadsIt) {
    const QDate date(2024, 2, 29);
    const QTime time(6, 7, 8, 9);
    const std::vector<std::pair<QVariant, QString>> cases = {
        {true, QStringLiteral("1")},
        {false, QStringLiteral("0")},
        {-5, QStringLiteral("-5")},
        {std::numeric_limits<qint64>::min(), QStringLiteral("-9223372036854775808")},
        {std::numeric_limits<quint64>::max(), QStringLiteral("18446744073709551615")},
        {QVariant::fromValue<short>(-3), QStringLiteral("-3")},
        {QVariant::fromValue<uchar>(200), QStringLiteral("200")},
        {0.1, QStringLiteral("0.100000000000000006")},
        {-1e300, QStringLiteral("-1.00000000000000005e+300")},
        {std::nan(""), QStringLiteral("Null")},
        {std::numeric_limits<double>::infinity(), QStringLiteral("9e999")},
        {-std::numeric_limits<double>::infinity(), QStringLiteral("-9e999")},
        {QVariant::fromValue(0.5F), QStringLiteral("'0.5'")},
        {date, QStringLiteral("'2024-02-29'")},
        {time, QStringLiteral("'06:07:08.009'")},
        {QDateTime(date, time), QStringLiteral("'2024-02-29 06:07:08.009'")},
        {QVariant::fromValue(QDecNumber::fromString(QStringLiteral("12.30"))), QStringLiteral("12.30")},
        {QVariant::fromValue(QDecNumber::fromString(QStringLiteral("NaN"))), QStringLiteral("Null")},
        {QVariant::fromValue(QDecNumber::fromString(QStringLiteral("-Infinity"))), QStringLiteral("-9e999")},
        {QStringLiteral("O'Neil"), QStringLiteral("'O''Neil'")},
        {QString::fromUtf8("Ёж 🦔"), QString::fromUtf8("'Ёж 🦔'")},
        {QString::fromLatin1("a\0b", 3), QStringLiteral("'a'")},
        {QString(), QStringLiteral("''")},
        {QByteArray("bytes"), QStringLiteral("'bytes'")},
    };
    for (const auto& [value, literal] : cases) {
        EXPECT_EQ(sqlLiteral(value), literal) << value.typeName() << " " << qPrintable(literal);
    }
}

TEST(CreateIndexSql, DeclaresTheColumnsAndTheKey) {
    QVector<dp::AttributeDefinitionPointer> attributes;
    const auto add = [&attributes](int type, dp::SimpleAttributeDefinition::Options options = {}) {
        attributes.append(
            dp::AttributeDefinitionPointer(new dp::SimpleAttributeDefinition({}, type, options)));
    };
    add(QMetaType::LongLong);
    add(QMetaType::QString, {.length = 30});
    add(qMetaTypeId<QDecNumber>(), {.length = 12, .precision = 2});
    attributes.append(dp::AttributeDefinitionPointer(new dp::RenditionAttributeDefinition({})));
    add(QMetaType::QDate);
    const dp::TableSchema schema(attributes);
    const QString table = QStringLiteral("i1");
    const QString locale = QStringLiteral("Locale");
    EXPECT_EQ(createIndexSql(table, {{0, 1}, {1, 1}}, schema, locale),
              QStringLiteral("Create Temporary Table i1(c0 Integer,c1 Varchar(30) Collate Locale,id Int,"
                             "Primary Key(c0,c1,id));"));
    EXPECT_EQ(createIndexSql(table, {{3, 1}, {2, 1}, {4, 3}}, schema, locale),
              QStringLiteral("Create Temporary Table i1(c2 Numeric(12, 2) ,c4 Date Text,id Int,"
                             "Primary Key(c2,c4,id));"));
    EXPECT_EQ(createIndexSql(table, {{1, 1}}, schema, QString()),
              QStringLiteral("Create Temporary Table i1(c1 Varchar(30) ,id Int,Primary Key(c1,id));"));
    EXPECT_EQ(createIndexSql(table, {{3, 1}}, schema, locale), QString());
}

} // namespace

} // namespace orvane::engine
