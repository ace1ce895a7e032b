#include <orvane/engine/functions/Converters.h>

#include "TextArguments.h"
#include "platform/utils/Compare.h"
#include "platform/utils/DateTimes.h"
#include "platform/utils/MetaTypes.h"
#include "platform/utils/Quoting.h"

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <limits>
#include <optional>

namespace orvane::engine {

const QString timeFormat = QStringLiteral("hh:mm:ss.zzz");
const QString dateTimeFormat = QStringLiteral("yyyy-MM-dd ") + timeFormat;

namespace {

const char* bytes(sqlite3_value* value) {
    return reinterpret_cast<const char*>(sqlite3_value_text(value));
}

/// The numbers of SQL texts have a decimal point even where the process runs under a locale with a comma.
locale_t numericLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

double parse(const char* text, char** end, double) {
    return strtod_l(text, end, numericLocale());
}
qint64 parse(const char* text, char** end, qint64) {
    return strtoll_l(text, end, 10, numericLocale());
}

template<typename Number>
std::optional<Number> numberInText(const char* text) {
    if (text == nullptr) {
        return std::nullopt;
    }
    char* end = nullptr;
    errno = 0;
    const Number number = parse(text, &end, Number());
    return end != text && errno != ERANGE ? std::optional(number) : std::nullopt;
}

template<typename Number>
Number toNumber(sqlite3_value* value, bool* ok, Number (*stored)(sqlite3_value*)) {
    std::optional<Number> number;
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT: number = stored(value); break;
    case SQLITE_TEXT: number = numberInText<Number>(bytes(value)); break;
    default: break;
    }
    if (ok != nullptr) {
        *ok = number.has_value();
    }
    return number.value_or(0);
}

/// The number in `count` digits; -1 where there are fewer. Stops at the end of the text, which is no digit.
int digits(const char* at, int count) {
    int number = 0;
    for (int i = 0; i < count; ++i) {
        if (at[i] < '0' || at[i] > '9') {
            return -1;
        }
        number = number * 10 + (at[i] - '0');
    }
    return number;
}

/// "yyyy-MM-dd" at the beginning of a text, the form in which the database keeps nearly all dates; invalid
/// otherwise.
QDate commonDate(const char* text) {
    const int year = digits(text, 4);
    if (year < 0 || text[4] != '-') {
        return {};
    }
    const int month = digits(text + 5, 2);
    if (month < 0 || text[7] != '-') {
        return {};
    }
    return QDate(year, month, digits(text + 8, 2));
}

/// "hh:mm:ss" or "hh:mm:ss.zzz", and nothing else; invalid otherwise.
QTime commonTime(const char* text) {
    const int hour = digits(text, 2);
    if (hour < 0 || text[2] != ':') {
        return {};
    }
    const int minute = digits(text + 3, 2);
    if (minute < 0 || text[5] != ':') {
        return {};
    }
    const int second = digits(text + 6, 2);
    if (second < 0) {
        return {};
    }
    if (text[8] == '\0') {
        return QTime(hour, minute, second);
    }
    const int millisecond = text[8] == '.' ? digits(text + 9, 3) : -1;
    return millisecond >= 0 && text[12] == '\0' ? QTime(hour, minute, second, millisecond) : QTime();
}

bool joinsDateAndTime(char separator) {
    return separator == ' ' || separator == 'T';
}

QString latin1(sqlite3_value* value) {
    return QString::fromLatin1(bytes(value));
}

} // namespace

std::optional<double> doubleInText(const unsigned char* text) {
    return numberInText<double>(reinterpret_cast<const char*>(text));
}

std::string toString(sqlite3_value* value) {
    const char* text = bytes(value);
    return text != nullptr ? std::string(text) : std::string();
}

QString toString(const QDate& date) {
    return date.toString(Qt::ISODate);
}

QString toString(const QTime& time) {
    return time.toString(timeFormat);
}

QString toString(const QDateTime& dateTime) {
    // The local clock does not show every wall clock that the object may hold.
    return QDateTime(dateTime.date(), dateTime.time(), Qt::UTC).toString(dateTimeFormat);
}

QString toQString(sqlite3_value* value) {
    const char* text = bytes(value);
    return text != nullptr ? utf8::decode(text) : QString();
}

QString toQStringUTF8(sqlite3_value* value) {
    return toQString(value);
}

double toDouble(sqlite3_value* value, bool* ok) {
    return toNumber<double>(value, ok, sqlite3_value_double);
}

qint64 toInt64(sqlite3_value* value, bool* ok) {
    return toNumber<qint64>(value, ok,
                            [](sqlite3_value* stored) -> qint64 { return sqlite3_value_int64(stored); });
}

QTime toTime(sqlite3_value* value) {
    if (isNull(value)) {
        return {};
    }
    if (const char* common = bytes(value); common != nullptr) {
        const bool hasDate = commonDate(common).isValid();
        if (const QTime time = commonTime(hasDate && joinsDateAndTime(common[10]) ? common + 11 : common);
            time.isValid()) {
            return time;
        }
    }
    const QString text = latin1(value);
    if (const QTime time = utils::dateTimeOfText(text).time(); time.isValid()) {
        return time;
    }
    if (const QTime time = QTime::fromString(text, Qt::ISODate); time.isValid()) {
        return time;
    }
    return QTime::fromString(text, timeFormat);
}

QDate toDate(sqlite3_value* value) {
    const QDate date = toDateTime(value).date();
    return date.isValid() || isNull(value) ? date : QDate::fromString(latin1(value), Qt::ISODate);
}

QDateTime toDateTime(sqlite3_value* value) {
    if (isNull(value)) {
        return {};
    }
    if (const char* common = bytes(value); common != nullptr) {
        const QDate date = commonDate(common);
        const bool isWhole = date.isValid() && common[10] == '\0';
        const QTime time = date.isValid() && joinsDateAndTime(common[10]) ? commonTime(common + 11) : QTime();
        if (isWhole || time.isValid()) {
            return QDateTime(date, isWhole ? QTime(0, 0) : time, Qt::UTC);
        }
    }
    return utils::dateTimeOfText(latin1(value));
}

QString escapeString(QString text, char quote) {
    return utils::quoted(std::move(text), QLatin1Char(quote));
}

bool isGeometry(const dp::AttributeDefinitionPointer& definition) {
    return dynamic_cast<const dp::GeometryAttributeDefinition*>(definition.constData()) != nullptr;
}

bool isStyle(const dp::AttributeDefinitionPointer& definition) {
    return dynamic_cast<const dp::RenditionAttributeDefinition*>(definition.constData()) != nullptr;
}

int variantType(const QVariant& value) {
    if (!value.isValid()) {
        return std::numeric_limits<int>::max();
    }
    return isPlainInt(value.userType()) ? static_cast<int>(QMetaType::LongLong) : value.userType();
}

bool variantCompare(const QVariant& a, const QVariant& b) {
    const int typeOfA = variantType(a);
    const int typeOfB = variantType(b);
    return typeOfA != typeOfB ? typeOfA < typeOfB : utils::compare(a, b) < 0;
}

} // namespace orvane::engine
