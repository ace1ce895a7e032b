#include "SqlFunctions.h"

#include "platform/decimal/QDecNumber.h"
#include <orvane/engine/functions/Converters.h>

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>

using namespace orvane::engine;

namespace {

/// A value of SQLite from its SQL text.
class Value {
public:
    explicit Value(const char* expression) {
        static const orvane::tests::SqlFunctions database;
        sqlite3_stmt* statement = nullptr;
        const std::string sql = std::string("Select ") + expression;
        sqlite3_prepare_v2(database.handle(), sql.c_str(), -1, &statement, nullptr);
        sqlite3_step(statement);
        value_.reset(sqlite3_value_dup(sqlite3_column_value(statement, 0)));
        sqlite3_finalize(statement);
    }
    operator sqlite3_value*() const { return value_.get(); }

private:
    struct Free {
        void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
    };
    std::unique_ptr<sqlite3_value, Free> value_;
};

} // namespace

TEST(Converters, NumbersInValues) {
    struct Case {
        const char* expression;
        double number;
        bool isDouble;
        qint64 integer;
        bool isInteger;
    };
    const Case cases[] = {
        {"7", 7, true, 7, true},
        {"-12.9", -12.9, true, -12, true},
        {"' 2.5e3xyz'", 2500, true, 2, true},
        {"'-12.9'", -12.9, true, -12, true},
        {"'+5'", 5, true, 5, true},
        {"'0x10'", 16, true, 0, true},
        {"'1,5'", 1, true, 1, true},
        {"'abc'", 0, false, 0, false},
        {"''", 0, false, 0, false},
        {"'1e999'", 0, false, 1, true},
        {"'99999999999999999999999999999'", 1e29, true, 0, false},
        {"'-9223372036854775808'", -9223372036854775808.0, true, std::numeric_limits<qint64>::min(), true},
        {"'١٢'", 0, false, 0, false},
        {"x'3132'", 0, false, 0, false},
        {"NULL", 0, false, 0, false},
    };
    for (const Case& c : cases) {
        const Value value(c.expression);
        bool ok = !c.isDouble;
        EXPECT_DOUBLE_EQ(c.number, toDouble(value, &ok)) << c.expression;
        EXPECT_EQ(c.isDouble, ok) << c.expression;
        ok = !c.isInteger;
        EXPECT_EQ(c.integer, toInt64(value, &ok)) << c.expression;
        EXPECT_EQ(c.isInteger, ok) << c.expression;
        EXPECT_DOUBLE_EQ(c.number, toDouble(value, nullptr));
    }
}

TEST(Converters, NumbersKeepTheirPointUnderACommaLocale) {
    if (!setlocale(LC_NUMERIC, "de_DE.UTF-8")) {
        GTEST_SKIP() << "the locale is not installed";
    }
    EXPECT_EQ(2.5, toDouble(Value("'2.5'"), nullptr));
    setlocale(LC_NUMERIC, "C");
}

TEST(Converters, TextsOfEveryStorageClass) {
    EXPECT_EQ("12", toString(Value("12")));
    EXPECT_EQ("Ж😀", toString(Value("'Ж😀'")));
    EXPECT_EQ("", toString(Value("NULL")));
    EXPECT_EQ(QString::fromUtf8("Ж😀"), toQString(Value("'Ж😀'")));
    EXPECT_EQ(QString::fromUtf8("Ж😀"), toQStringUTF8(Value("'Ж😀'")));
    EXPECT_EQ(QStringLiteral("a"), toQString(Value("cast(x'610062' As text)")));
    EXPECT_EQ(QStringLiteral("a"), toQStringUTF8(Value("x'610062'")));
    EXPECT_TRUE(toQString(Value("NULL")).isNull());
    EXPECT_TRUE(toQStringUTF8(Value("NULL")).isEmpty());
}

TEST(Converters, EscapedTexts) {
    EXPECT_EQ(QStringLiteral("'it''s'"), escapeString(QStringLiteral("it's"), '\''));
    EXPECT_EQ(QStringLiteral("'a''''b'"), escapeString(QStringLiteral("a''b"), '\''));
    EXPECT_EQ(QStringLiteral("''"), escapeString(QString(), '\''));
    EXPECT_EQ(QStringLiteral("\"a\"\"b\""), escapeString(QStringLiteral("a\"b"), '"'));
    EXPECT_EQ(QString::fromUtf8("«a««b«"), escapeString(QString::fromUtf8("a«b"), '\xAB'));
}

TEST(Converters, KindsOfColumns) {
    using namespace orvane::dp;
    const AttributeDefinitionPointer plain(
        new SimpleAttributeDefinition(QStringLiteral("a"), QMetaType::Int));
    const AttributeDefinitionPointer geometry(new GeometryAttributeDefinition(QStringLiteral("g"), nullptr));
    const AttributeDefinitionPointer style(new RenditionAttributeDefinition(QStringLiteral("s")));
    const AttributeDefinitionPointer none;
    for (const auto* definition : {&plain, &geometry, &style, &none}) {
        EXPECT_EQ(definition == &geometry, isGeometry(*definition));
        EXPECT_EQ(definition == &style, isStyle(*definition));
    }
}

TEST(Converters, VariantsComeByTypeThenValue) {
    const auto before = [](const QVariant& a, const QVariant& b) {
        return variantCompare(a, b) && !variantCompare(b, a);
    };
    EXPECT_TRUE(before(2LL, 10));
    EXPECT_TRUE(before(2, 10ULL));
    EXPECT_TRUE(before(QVariant::fromValue<short>(-1), 0U));
    EXPECT_TRUE(before(10, 2.0)); // meta-types 4 and 6
    EXPECT_TRUE(before(1e300, QStringLiteral("1")));
    EXPECT_TRUE(before(QVariant::fromValue(QDecNumber(qint64{1})), QVariant()));
    EXPECT_FALSE(variantCompare(QVariant(), QVariant()));
    EXPECT_FALSE(variantCompare(5, 5LL));
    EXPECT_EQ(std::numeric_limits<int>::max(), variantType(QVariant()));
    EXPECT_EQ(4, variantType(1U));
    EXPECT_EQ(static_cast<int>(QMetaType::Bool), variantType(true));
}
