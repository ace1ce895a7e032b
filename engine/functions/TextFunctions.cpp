#include <orvane/engine/functions/Text.h>

#include "Barrier.h"
#include "TextArguments.h"
#include "platform/geometry/shapes/GeoSqlType.h"
#include "platform/utils/Utf8.h"
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/functions/Converters.h>

#include <QLocale>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace orvane::engine {

namespace {

bool isBlank(unsigned char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

int toResult(qint64 number) {
    return static_cast<int>(std::min<qint64>(number, std::numeric_limits<int>::max()));
}

/// Gives the bytes `count` times. The count comes from the query: SQLite's limit is checked before memory is
/// taken.
void resultRepeated(sqlite3_context* context, const QByteArray& bytes, qint64 count) {
    sqlite3* database = sqlite3_context_db_handle(context);
    const qint64 limit = sqlite3_limit(database, SQLITE_LIMIT_LENGTH, -1);
    const qint64 times = std::max<qint64>(count, 0);
    if (times > limit / bytes.size()) {
        sqlite3_result_error_toobig(context);
        return;
    }
    const auto size = static_cast<size_t>(times * bytes.size());
    auto* buffer = static_cast<char*>(sqlite3_malloc64(size + 1));
    if (buffer == nullptr) {
        sqlite3_result_error_nomem(context);
        return;
    }
    if (bytes.size() == 1) {
        std::memset(buffer, bytes.at(0), size);
    } else {
        for (size_t at = 0; at < size; at += static_cast<size_t>(bytes.size())) {
            std::memcpy(buffer + at, bytes.constData(), static_cast<size_t>(bytes.size()));
        }
    }
    buffer[size] = '\0';
    sqlite3_result_text64(context, buffer, size, sqlite3_free, SQLITE_UTF8);
}

/// The count of `space` and `repeat`; nothing where the result is NULL.
std::optional<qint64> repetitions(sqlite3_value* value) {
    bool ok = false;
    const qint64 count = toInt64(value, &ok);
    return ok && count <= std::numeric_limits<int>::max() ? std::optional(count) : std::nullopt;
}

QString shortText(sqlite3_value* value) {
    if (const QDateTime dateTime = toDateTime(value); dateTime.isValid()) {
        return QLocale().toString(dateTime, QLocale::ShortFormat);
    }
    if (const QDate date = toDate(value); date.isValid()) {
        return QLocale().toString(date, QLocale::ShortFormat);
    }
    if (const QTime time = toTime(value); time.isValid()) {
        return time.toString(Qt::ISODateWithMs);
    }
    return toQString(value);
}

QString geometryType(sqlite3_context* context, sqlite3_value* value) {
    const auto geometry = toGeometry(context, value, true);
    return geometry != nullptr ? sql::geoSqlType(*geometry) : QString();
}

/// Whether a value reads as a number of one of two kinds.
void resultReadsAs(sqlite3_context* context, sqlite3_value* value, int kind, int otherKind) {
    if (sqlite3_value_type(value) != SQLITE_NULL) {
        const int read = sqlite3_value_numeric_type(value);
        sqlite3_result_int(context, read == kind || read == otherKind ? 1 : 0);
    }
}

} // namespace

void charUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0])) {
            return;
        }
        const QChar unit(static_cast<ushort>(sqlite3_value_int(values[0]) & 0xFFFF));
        resultText(context, QStringView(&unit, unit.isNull() ? 0 : 1));
    });
}

void ascUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0])) {
            return;
        }
        const unsigned char* text = utf8View(values[0]);
        if (text != nullptr && *text < 0x80) {
            sqlite3_result_int(context, *text);
            return;
        }
        const QString units = toQString(values[0]);
        sqlite3_result_int(context, units.isEmpty() ? 0 : units.at(0).unicode());
    });
}

void leftTrimUTF8(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const unsigned char* text = utf8View(values[0]);
        if (text == nullptr) {
            return;
        }
        const unsigned char* begin = text;
        while (isBlank(*begin)) {
            ++begin;
        }
        const unsigned char* end = begin + std::strlen(reinterpret_cast<const char*>(begin));
        resultUtf8(context, *begin == 0 ? text : begin, end);
    });
}

void rightTrimUTF8(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const unsigned char* text = utf8View(values[0]);
        if (text == nullptr) {
            return;
        }
        const unsigned char* whole = text + std::strlen(reinterpret_cast<const char*>(text));
        const unsigned char* end = whole;
        while (end != text && isBlank(end[-1])) {
            --end;
        }
        resultUtf8(context, text, end == text ? whole : end);
    });
}

void len(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const unsigned char* text = utf8View(values[0]);
        const qint64 units = text != nullptr ? utf8::countUnits(text) : 0;
        sqlite3_result_int(context, toResult(units >= 0 ? units : toQString(values[0]).size()));
    });
}

void left_utf16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const int count = sqlite3_value_int(values[1]);
        const unsigned char* text = utf8View(values[0]);
        if (text == nullptr || count < 1) { // a NULL count reads as 0
            return;
        }
        if (const unsigned char* end = utf8::skipUnits(text, count); end != nullptr) {
            resultUtf8(context, text, end);
            return;
        }
        const QString units = toQString(values[0]);
        resultText(context, units.left(count));
    });
}

void right_utf16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const int count = sqlite3_value_int(values[1]);
        const unsigned char* text = utf8View(values[0]);
        if (text == nullptr || count < 1) {
            return;
        }
        if (const qint64 units = utf8::countUnits(text); units >= 0) {
            if (const unsigned char* begin = utf8::skipUnits(text, units - count); begin != nullptr) {
                resultUtf8(context, begin, begin + std::strlen(reinterpret_cast<const char*>(begin)));
                return;
            }
        }
        const QString units = toQString(values[0]);
        resultText(context, units.right(count));
    });
}

void midUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const qint64 start = qint64{sqlite3_value_int(values[1])} - 1;
        const qint64 count = sqlite3_value_int(values[2]);
        const unsigned char* text = utf8View(values[0]);
        if (text == nullptr || start < 0 || count < 1) {
            return;
        }
        const unsigned char* begin = utf8::skipUnits(text, start);
        const unsigned char* end = begin != nullptr ? utf8::skipUnits(begin, count) : nullptr;
        if (end != nullptr) {
            if (*begin != 0) {
                resultUtf8(context, begin, end);
            }
            return;
        }
        const QString units = toQString(values[0]);
        if (start < units.size()) {
            resultText(context, units.mid(static_cast<int>(start), static_cast<int>(count)));
        }
    });
}

void valUTF8(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const unsigned char* text = utf8View(values[0]);
        const bool hasPrefix = text != nullptr && ((text[0] == '&' && (text[1] | 0x20) == 'h') ||
                                                   (text[0] == '0' && (text[1] | 0x20) == 'x'));
        if (hasPrefix && text[2] != 0) {
            sqlite3_result_int64(context, std::strtoll(reinterpret_cast<const char*>(text + 2), nullptr, 16));
        } else {
            sqlite3_result_double(context, doubleInText(text).value_or(0.0));
        }
    });
}

void capitalizeUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0])) {
            return;
        }
        QString text = toQString(values[0]);
        QChar previous = QLatin1Char(' ');
        for (QChar& unit : text) {
            if (previous.isSpace() && unit.isLetter()) {
                unit = unit.toUpper();
            }
            previous = unit;
        }
        resultText(context, text);
    });
}

void strUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        switch (sqlite3_value_type(values[0])) {
        case SQLITE_INTEGER: resultText(context, QString::number(sqlite3_value_int64(values[0]))); break;
        case SQLITE_FLOAT:
            resultText(context, QString::number(sqlite3_value_double(values[0]), 'g', 6));
            break;
        case SQLITE_TEXT: resultText(context, shortText(values[0])); break;
        case SQLITE_BLOB: resultText(context, geometryType(context, values[0])); break;
        default: break;
        }
    });
}

void space(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (const auto count = repetitions(values[0])) {
            resultRepeated(context, " ", *count);
        }
    });
}

void repeat(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const auto count = repetitions(values[0]);
        if (!count) {
            return;
        }
        const QString text = toQString(values[1]);
        const bool isPair = text.size() > 1 && text.at(0).isHighSurrogate() && text.at(1).isLowSurrogate();
        resultRepeated(context, text.isEmpty() ? QByteArray(" ") : text.left(isPair ? 2 : 1).toUtf8(),
                       *count);
    });
}

void isInteger(sqlite3_context* context, int, sqlite3_value** values) {
    resultReadsAs(context, values[0], SQLITE_INTEGER, SQLITE_INTEGER);
}

void isDecimalNumber(sqlite3_context* context, int, sqlite3_value** values) {
    resultReadsAs(context, values[0], SQLITE_FLOAT, SQLITE_FLOAT);
}

void isNumber(sqlite3_context* context, int, sqlite3_value** values) {
    resultReadsAs(context, values[0], SQLITE_INTEGER, SQLITE_FLOAT);
}

} // namespace orvane::engine
