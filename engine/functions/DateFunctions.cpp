#include <orvane/engine/functions/DateTime.h>

#include "Barrier.h"
#include "DateParser.h"
#include "PreparedArgument.h"
#include "TextArguments.h"
#include <orvane/engine/functions/Converters.h>

#include <cmath>
#include <limits>

namespace orvane::engine {

namespace {

constexpr qint64 firstCompactDate = 10000101;
constexpr qint64 lastCompactDate = 99991231;
constexpr qint64 unixTimeEnd = qint64{1} << 34;
constexpr qint64 ticksPerMillisecond = 10000;
constexpr qint64 ticksToUnixEpoch = 116444736000000000; // from 1601-01-01 to 1970-01-01
constexpr double daysToUnixEpoch = 25569;               // from 1899-12-30
constexpr double millisecondsPerDay = 86400000;
constexpr double lastDay = 1e10; // the milliseconds of any day up to this one fit 64 bits

QString compactDate(qint64 number) {
    return toString(QDate(static_cast<int>(number / 10000), static_cast<int>(number % 10000 / 100),
                          static_cast<int>(number % 100)));
}

QString fileTime(qint64 ticks) {
    constexpr qint64 offset = ticksToUnixEpoch - ticksPerMillisecond / 2; // rounds to the nearest millisecond
    constexpr qint64 smallest = std::numeric_limits<qint64>::min();
    const qint64 sinceEpoch = ticks < smallest + offset ? smallest : ticks - offset;
    return toString(QDateTime::fromMSecsSinceEpoch(sinceEpoch / ticksPerMillisecond));
}

QString dateOfInteger(qint64 number) {
    if (number >= firstCompactDate && number <= lastCompactDate) {
        return compactDate(number);
    }
    if (number < 0 || number >= unixTimeEnd) {
        return fileTime(number);
    }
    return toString(QDateTime::fromSecsSinceEpoch(number));
}

QString dateOfFloat(double number) {
    const double days = std::trunc(number);
    if (days == number && number >= firstCompactDate && number <= lastCompactDate) {
        return compactDate(static_cast<qint64>(number));
    }
    if (!(std::abs(number) <= lastDay)) {
        return {};
    }
    const double milliseconds =
        (days - daysToUnixEpoch) * millisecondsPerDay + std::round((number - days) * millisecondsPerDay);
    return toString(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds)));
}

/// The moment at which a statement first asked for the time.
class StatementClock {
public:
    static constexpr int numberInStatement = -20265;
    const QDateTime now = QDateTime::currentDateTime();
};

template<typename Text>
void tell(sqlite3_context* context, Text text) {
    barrier(context, [&] { resultText(context, text(ofStatement<StatementClock>(context).now)); });
}

template<typename Part>
void partOfDate(sqlite3_context* context, sqlite3_value** values, Part part) {
    barrier(context, [&] {
        if (const QDate date = toDate(values[0]); date.isValid()) {
            sqlite3_result_int(context, part(date));
        }
    });
}

template<typename Part>
void partOfTime(sqlite3_context* context, sqlite3_value** values, Part part) {
    barrier(context, [&] {
        if (const QTime time = toTime(values[0]); time.isValid()) {
            part(time);
        }
    });
}

} // namespace

void curDate(sqlite3_context* context, int, sqlite3_value**) {
    tell(context, [](const QDateTime& now) { return toString(now.date()); });
}

void curTime(sqlite3_context* context, int, sqlite3_value**) {
    tell(context, [](const QDateTime& now) { return toString(now.time()); });
}

void curDateTime(sqlite3_context* context, int, sqlite3_value**) {
    tell(context, [](const QDateTime& now) { return toString(now); });
}

void currentDate(sqlite3_context* context, int, sqlite3_value**) {
    tell(context, [](const QDateTime& now) { return toString(now.toUTC().date()); });
}

void currentTime(sqlite3_context* context, int, sqlite3_value**) {
    tell(context, [](const QDateTime& now) { return now.toUTC().toString(QStringLiteral("hh:mm:ss")); });
}

void currentTimestamp(sqlite3_context* context, int, sqlite3_value**) {
    tell(context,
         [](const QDateTime& now) { return now.toUTC().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")); });
}

void stringToDate(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context,
            [&] { resultText(context, parseDateText(toQString(values[0]), &QDateTime::currentDateTime)); });
}

void numberToDate(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (sqlite3_value_type(values[0]) == SQLITE_INTEGER) {
            resultText(context, dateOfInteger(sqlite3_value_int64(values[0])));
            return;
        }
        bool ok = false;
        if (const double number = toDouble(values[0], &ok); ok) {
            resultText(context, dateOfFloat(number));
        }
    });
}

void day(sqlite3_context* context, int, sqlite3_value** values) {
    partOfDate(context, values, [](const QDate& date) { return date.day(); });
}

void month(sqlite3_context* context, int, sqlite3_value** values) {
    partOfDate(context, values, [](const QDate& date) { return date.month(); });
}

void year(sqlite3_context* context, int, sqlite3_value** values) {
    partOfDate(context, values, [](const QDate& date) { return date.year(); });
}

void weekday(sqlite3_context* context, int, sqlite3_value** values) {
    partOfDate(context, values, [](const QDate& date) { return date.dayOfWeek() % 7; });
}

void hour(sqlite3_context* context, int, sqlite3_value** values) {
    partOfTime(context, values, [&](const QTime& time) { sqlite3_result_int(context, time.hour()); });
}

void minute(sqlite3_context* context, int, sqlite3_value** values) {
    partOfTime(context, values, [&](const QTime& time) { sqlite3_result_int(context, time.minute()); });
}

void second(sqlite3_context* context, int, sqlite3_value** values) {
    partOfTime(context, values, [&](const QTime& time) {
        sqlite3_result_double(context, time.second() + time.msec() / 1000.0);
    });
}

void getDate(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (const QDateTime dateTime = toDateTime(values[0]); dateTime.isValid()) {
            resultText(context, toString(dateTime.date()));
        }
    });
}

void getTime(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (const QDateTime dateTime = toDateTime(values[0]); dateTime.isValid()) {
            resultText(context, toString(dateTime.time()));
        }
    });
}

} // namespace orvane::engine
