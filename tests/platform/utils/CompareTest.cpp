#include "platform/utils/Compare.h"

#include "platform/decimal/QDecNumber.h"

#include <QDateTime>
#include <QUuid>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using orvane::utils::compare;

namespace {

QVariant decimal(const char* text) {
    return QVariant::fromValue(QDecNumber::fromString(QString::fromLatin1(text)));
}

QVariant text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// Groups of equal values in ascending order: every pair has a known answer.
std::vector<std::vector<QVariant>> ordered() {
    const double infinity = std::numeric_limits<double>::infinity();
    const QDateTime noon(QDate(2021, 3, 4), QTime(12, 0), Qt::UTC);
    return {
        {-infinity, decimal("-Infinity")},
        {decimal("-1E+6000")},
        {std::numeric_limits<qint64>::min(), -9223372036854775808.0},
        {-2, -2.0, -2.0F, decimal("-2.0")},
        {decimal("-1E-6000")},
        {0, 0U, -0.0, false, QVariant::fromValue<short>(0), decimal("0E+3")},
        {decimal("1E-6000")},
        {std::numeric_limits<double>::denorm_min()},
        {decimal("0.1")}, // 0.1 as a double is a little more
        {0.1},
        {0.1F},
        {1, true, QVariant::fromValue<uchar>(1), decimal("1.00")},
        {9007199254740992.0, 9007199254740992LL},
        {9007199254740993LL, decimal("9007199254740993")}, // 2^53 + 1, no double
        {9223372036854775807LL},
        {9223372036854775808.0, 9223372036854775808ULL},
        {18446744073709551615ULL},
        {18446744073709551616.0},
        {decimal("1E+6000")},
        {infinity, decimal("Infinity")},
        {std::nan(""), decimal("NaN")},
        {text("")},
        {text("10")},
        {text("9")},
        {text("A"), QChar(u'A')},
        {text("a")},
        {text("ab")},
        {text("Ж")},
        {text("\U0001F600")}, // its first code unit is 0xD83D
        {text("\uFF41")},     // ordinal order is that of code units
        {QByteArray("")},
        {QByteArray("a\0", 2)},
        {QByteArray("a\0b", 3)},
        {QByteArray("\xff")},
        {QDate(-4, 1, 1)},
        {QDate(2021, 3, 4)},
        {QTime(0, 0)},
        {QTime(23, 59, 59, 999)},
        {noon, noon.toOffsetFromUtc(3 * 3600)},
        {noon.addMSecs(1)},
        {QVariantList{}},
        {QVariantList{1}, QVariantList{1.0}},
        {QVariantList{1, text("x")}},
        {QVariantList{2}},
        {QUuid::fromString(QLatin1String("{00000000-0000-0000-0000-000000000001}"))},
        {QUuid::fromString(QLatin1String("{00000000-0000-0000-0000-000000000002}"))},
        {QVariant(), QVariant(QVariant::Int), QVariant(QVariant::String), QVariant(QDate())},
    };
}

} // namespace

TEST(Compare, OrdersEveryPairOfAMixedListAndItsReverse) {
    const auto groups = ordered();
    for (size_t i = 0; i < groups.size(); ++i) {
        for (size_t j = 0; j < groups.size(); ++j) {
            for (const QVariant& a : groups[i]) {
                for (const QVariant& b : groups[j]) {
                    const int order = compare(a, b);
                    EXPECT_EQ(i < j, order < 0)
                        << i << ' ' << j << ' ' << a.typeName() << ' ' << b.typeName();
                    EXPECT_EQ(i > j, order > 0)
                        << i << ' ' << j << ' ' << a.typeName() << ' ' << b.typeName();
                }
            }
        }
    }
}
