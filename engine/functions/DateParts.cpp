#include <orvane/engine/functions/DateTime.h>

#include "Barrier.h"
#include "TextArguments.h"
#include <orvane/engine/functions/Converters.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>

// The parts of a date or time by their names, as Extract and Date_Trunc take them.

namespace orvane::engine {

namespace {

constexpr int daysOfWeek = 7;
constexpr int monthsOfQuarter = 3;

int isoYear(const QDate& date) {
    int year = 0;
    date.weekNumber(&year);
    return year;
}

QDate startOfQuarter(const QDate& date) {
    return {date.year(), (date.month() - 1) / monthsOfQuarter * monthsOfQuarter + 1, 1};
}

/// Has one of the three: a number and a beginning within the date, or a length within the day.
struct Part {
    const char* name;
    int (*number)(const QDate&) = nullptr;
    QDate (*start)(const QDate&) = nullptr; ///< of the span the date lies in; null where it is no span
    int milliseconds = 0;
};

const Part parts[] = {
    {"year", [](const QDate& date) { return date.year(); },
     [](const QDate& date) { return QDate(date.year(), 1, 1); }},
    {"quarter", [](const QDate& date) { return (date.month() - 1) / monthsOfQuarter + 1; }, startOfQuarter},
    {"month", [](const QDate& date) { return date.month(); },
     [](const QDate& date) { return QDate(date.year(), date.month(), 1); }},
    {"week", [](const QDate& date) { return date.weekNumber(); },
     [](const QDate& date) { return date.addDays(1 - date.dayOfWeek()); }},
    {"day", [](const QDate& date) { return date.day(); }, [](const QDate& date) { return date; }},
    {"isoyear", isoYear},
    {"doy", [](const QDate& date) { return date.dayOfYear(); }},
    {"dow", [](const QDate& date) { return date.dayOfWeek() % daysOfWeek; }},
    {"isodow", [](const QDate& date) { return date.dayOfWeek(); }},
    {"hour", nullptr, nullptr, 3600000},
    {"minute", nullptr, nullptr, 60000},
    {"second", nullptr, nullptr, 1000},
};

bool isSpan(const Part& part) {
    return part.start != nullptr || part.milliseconds != 0;
}

/// Throws std::runtime_error for a name that is none, or none of a span.
const Part& partNamed(const char* function, sqlite3_value* name, bool ofSpan) {
    const auto* const asked = reinterpret_cast<const char*>(utf8View(name));
    const auto* const found = std::find_if(std::begin(parts), std::end(parts), [&](const Part& part) {
        return (!ofSpan || isSpan(part)) && sqlite3_stricmp(part.name, asked) == 0;
    });
    if (found != std::end(parts)) {
        return *found;
    }
    std::string known;
    for (const Part& part : parts) {
        known += !ofSpan || isSpan(part) ? (known.empty() ? "" : ", ") + std::string(part.name) : "";
    }
    throw std::runtime_error(std::string(function) + ": unknown part \"" + asked + "\" (" + known + ")");
}

void resultNumber(sqlite3_context* context, const Part& part, const QTime& time) {
    constexpr int secondsOfMinute = 60;
    constexpr double millisecondsOfSecond = 1000;
    const int sinceMidnight = time.msecsSinceStartOfDay();
    if (part.milliseconds == millisecondsOfSecond) {
        sqlite3_result_double(context, time.second() + time.msec() / millisecondsOfSecond);
    } else {
        sqlite3_result_int(context, sinceMidnight / part.milliseconds % secondsOfMinute);
    }
}

QTime startOfSpan(const QTime& time, const Part& part) {
    const int milliseconds = part.milliseconds != 0 ? part.milliseconds : 24 * 3600000;
    const int sinceMidnight = time.msecsSinceStartOfDay();
    return QTime::fromMSecsSinceStartOfDay(sinceMidnight - sinceMidnight % milliseconds);
}

} // namespace

void extract(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0]) || isNull(values[1])) {
            return;
        }
        const Part& part = partNamed("Extract", values[0], false);
        if (part.number == nullptr) {
            if (const QTime time = toTime(values[1]); time.isValid()) {
                resultNumber(context, part, time);
            }
        } else if (const QDate date = toDate(values[1]); date.isValid()) {
            sqlite3_result_int(context, part.number(date));
        }
    });
}

void dateTrunc(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0]) || isNull(values[1])) {
            return;
        }
        const Part& part = partNamed("Date_Trunc", values[0], true);
        constexpr int dateLength = 10;
        const QDateTime whole = toDateTime(values[1]);
        const QDate start =
            part.start != nullptr && whole.isValid() ? part.start(whole.date()) : whole.date();
        if (!whole.isValid()) { // a time by itself has no part of a date
            const QTime time = part.milliseconds != 0 ? toTime(values[1]) : QTime();
            if (time.isValid()) {
                resultText(context, toString(startOfSpan(time, part)));
            }
        } else if (sqlite3_value_bytes(values[1]) == dateLength) {
            resultText(context, toString(start));
        } else {
            resultText(context, toString(QDateTime(start, startOfSpan(whole.time(), part), Qt::UTC)));
        }
    });
}

} // namespace orvane::engine
