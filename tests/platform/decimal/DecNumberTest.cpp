#include "platform/decimal/QDecNumber.h"

#include "support/TextTable.h"

#include <QVariant>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

QDecNumber number(const char* text) {
    return QDecNumber::fromString(QString::fromLatin1(text));
}

std::string text(const QDecNumber& value) {
    return decNumberToString(value).toStdString();
}

} // namespace

TEST(DecNumber, TextsKeepTheirDigits) {
    for (const orvane::tests::TableRow& row : orvane::tests::readTable("utils/decimals.txt")) {
        const auto& [input, expected] = row.columns<2>();
        const bool isNumber = expected != QLatin1String("error");
        bool ok = !isNumber;
        EXPECT_EQ(isNumber ? row.text(1) : "NaN", text(QDecNumber::fromString(input, &ok))) << row.place;
        EXPECT_EQ(ok, isNumber) << row.place;
        if (isNumber) {
            EXPECT_EQ(row.text(1), text(QDecNumber::fromString(expected))) << row.place;
        }
    }
    bool ok = true;
    EXPECT_TRUE(QDecNumber::fromString(QString(), &ok).isNaN());
    EXPECT_FALSE(ok);
}

TEST(DecNumber, ArithmeticIsDecimal) {
    EXPECT_EQ("0.3", text(number("0.1") + number("0.2")));
    EXPECT_EQ("1.10", text(number("1.3") - number("0.20")));
    EXPECT_EQ("1.0000", text(number("0.25") * number("4.00")));
    EXPECT_EQ("0.3333333333333333333333333333333333", text(number("1") / number("3")));
    EXPECT_EQ("Infinity", text(number("1") / number("0")));
    EXPECT_EQ("NaN", text(number("0") / number("0")));
    EXPECT_EQ("-1.5", text(-number("1.5")));
    EXPECT_EQ("1.234567890123456789012345678901234E+34", // half to even
              text(number("1234567890123456789012345678901234") * number("10") + number("5")));
}

TEST(DecNumber, ConvertsToBinaryNumbers) {
    EXPECT_EQ(0.1, number("0.1").toDouble());
    EXPECT_EQ("0.1", text(QDecNumber(0.1)));
    EXPECT_EQ("1E+300", text(QDecNumber(1e300)));
    EXPECT_EQ("9223372036854775807", text(QDecNumber(std::numeric_limits<qint64>::max())));
    bool ok = false;
    EXPECT_EQ(-12, number("-12.9").toInt64(&ok));
    EXPECT_TRUE(ok);
    EXPECT_EQ(std::numeric_limits<qint64>::min(), number("-9223372036854775808.5").toInt64(&ok));
    EXPECT_TRUE(ok);
    for (const char* outside : {"9223372036854775808", "1E+40", "NaN", "-Infinity"}) {
        EXPECT_EQ(0, number(outside).toInt64(&ok)) << outside;
        EXPECT_FALSE(ok) << outside;
    }
}

TEST(DecNumber, ComparesByValueAndExactlyWithBinaryNumbers) {
    EXPECT_EQ(number("1.10"), number("1.1"));
    EXPECT_LT(number("-2"), number("1E-100"));
    EXPECT_EQ(number("NaN"), number("NaN"));
    EXPECT_GT(number("NaN"), number("Infinity"));
    EXPECT_LT(number("0.1").compare(0.1L), 1);
    EXPECT_LT(number("0.1").compare(static_cast<long double>(0.1)), 0); // 0.1 as a double is more than 0.1
    EXPECT_EQ(number("0.5").compare(0.5L), 0);
    EXPECT_GT(number("-1E-6000").compare(-5e-324L), 0);
    EXPECT_LT(number("-1E-6000").compare(0.0L), 0);
    EXPECT_GT(number("1E+6000").compare(1e308L), 0);
    EXPECT_LT(number("1E+6000").compare(std::numeric_limits<long double>::infinity()), 0);
    EXPECT_GT(number("-1E+6000").compare(-std::numeric_limits<long double>::infinity()), 0);
}

TEST(DecNumber, TravelsInVariantsUnderItsName) {
    const int type = QMetaType::type("QDecNumber");
    ASSERT_EQ(qMetaTypeId<QDecNumber>(), type);
    const QVariant value = QVariant::fromValue(number("12.30"));
    EXPECT_EQ("12.30", value.toString().toStdString());
    EXPECT_EQ(12.3, value.toDouble());
    EXPECT_EQ(12, value.toLongLong());
}
