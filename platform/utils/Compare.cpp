#include "platform/utils/Compare.h"

#include "platform/decimal/QDecNumber.h"
#include "platform/utils/MetaTypes.h"

#include <QDateTime>
#include <QUuid>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvane::utils {

namespace {

// Every 64-bit integer, signed or not, and every double is a long double without loss.
static_assert(std::numeric_limits<long double>::digits >= 64);

enum class Group { Number, Text, Bytes, Date, Time, DateTime, List, Other, Absent };

template<typename T>
int threeWay(const T& a, const T& b) {
    return a < b ? -1 : (b < a ? 1 : 0);
}

bool isDecimal(int type) {
    return type == qMetaTypeId<QDecNumber>();
}

Group groupOf(const QVariant& value) {
    if (value.isNull()) {
        return Group::Absent;
    }
    const int type = value.userType();
    if (isPlainInt(type)) {
        return Group::Number;
    }
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Float:
    case QMetaType::Double: return Group::Number;
    case QMetaType::QString:
    case QMetaType::QChar: return Group::Text;
    case QMetaType::QByteArray: return Group::Bytes;
    case QMetaType::QDate: return Group::Date;
    case QMetaType::QTime: return Group::Time;
    case QMetaType::QDateTime: return Group::DateTime;
    case QMetaType::QVariantList:
    case QMetaType::QStringList: return Group::List;
    default: return isDecimal(type) ? Group::Number : Group::Other;
    }
}

long double numberOf(const QVariant& value) {
    switch (value.userType()) {
    case QMetaType::ULongLong:
    case QMetaType::ULong: return value.toULongLong();
    case QMetaType::Float:
    case QMetaType::Double: return value.toDouble();
    default: return value.toLongLong();
    }
}

int compareNumbers(const QVariant& a, const QVariant& b) {
    if (isDecimal(a.userType())) {
        const auto decimal = a.value<QDecNumber>();
        return isDecimal(b.userType()) ? decimal.compare(b.value<QDecNumber>())
                                       : decimal.compare(numberOf(b));
    }
    if (isDecimal(b.userType())) {
        return -b.value<QDecNumber>().compare(numberOf(a));
    }
    const long double left = numberOf(a);
    const long double right = numberOf(b);
    if (std::isnan(left) || std::isnan(right)) {
        return threeWay(std::isnan(left), std::isnan(right));
    }
    return threeWay(left, right);
}

int compareBytes(const QByteArray& a, const QByteArray& b) {
    const int order =
        std::memcmp(a.constData(), b.constData(), static_cast<size_t>(std::min(a.size(), b.size())));
    return order != 0 ? order : threeWay(a.size(), b.size());
}

int compareLists(const QVariantList& a, const QVariantList& b) {
    for (int i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (const int order = compare(a.at(i), b.at(i)); order != 0) {
            return order;
        }
    }
    return threeWay(a.size(), b.size());
}

int compareOthers(const QVariant& a, const QVariant& b) {
    const int type = a.userType();
    if (type != b.userType()) {
        return threeWay(type, b.userType());
    }
    if (type == QMetaType::QUuid) {
        return threeWay(a.toUuid(), b.toUuid());
    }
    int order = 0;
    if (QMetaType::compare(a.constData(), b.constData(), type, &order)) {
        return order;
    }
    return a.toString().compare(b.toString(), Qt::CaseSensitive);
}

} // namespace

int compare(const QVariant& a, const QVariant& b) {
    const Group group = groupOf(a);
    if (const int order = threeWay(group, groupOf(b)); order != 0) {
        return order;
    }
    switch (group) {
    case Group::Number: return compareNumbers(a, b);
    case Group::Text: return a.toString().compare(b.toString(), Qt::CaseSensitive);
    case Group::Bytes: return compareBytes(a.toByteArray(), b.toByteArray());
    case Group::Date: return threeWay(a.toDate(), b.toDate());
    case Group::Time: return threeWay(a.toTime(), b.toTime());
    case Group::DateTime: return threeWay(a.toDateTime(), b.toDateTime());
    case Group::List: return compareLists(a.toList(), b.toList());
    case Group::Other: return compareOthers(a, b);
    case Group::Absent: break;
    }
    return 0;
}

} // namespace orvane::utils
