#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/DateTime.h>

namespace orvane::adaptor {

namespace {

constexpr const char* group = "Date and time";
constexpr Arity none = Arity::exactly(0);
constexpr Arity one = Arity::exactly(1);

const FunctionRecord records[] = {
    environmentFunction("CurDate", group, none, engine::curDate,
                        {"CurDate()", "Today's date.", "CurDate()", nullptr}),
    environmentFunction("CurTime", group, none, engine::curTime,
                        {"CurTime()", "The current local time.", "CurTime()", nullptr}),
    alsoNamed("Now",
              environmentFunction("CurDateTime", group, none, engine::curDateTime,
                                  {"CurDateTime()",
                                   "The current local date and time, the same in all rows of a statement.",
                                   "CurDateTime()", nullptr})),
    environmentFunction("Current_Date", group, none, engine::currentDate,
                        {"Current_Date", "The date in UTC.", "Length(Current_Date)", "10"}),
    environmentFunction("Current_Time", group, none, engine::currentTime,
                        {"Current_Time", "The time in UTC.", "Length(Current_Time)", "8"}),
    environmentFunction("Current_Timestamp", group, none, engine::currentTimestamp,
                        {"Current_Timestamp",
                         "The date and time in UTC, the same in all rows of a statement.",
                         "Length(Current_Timestamp)", "19"}),
    environmentFunction(
        "StringToDate", group, one, engine::stringToDate,
        {"StringToDate(text)",
         "The date, the time or both in a free text, in Russian or English; what a date lacks comes "
         "from today, so that NULL and an empty text are today's date.",
         "StringToDate('15 марта 2021 12:30')", "2021-03-15 12:30:00.000"}),
    environmentFunction(
        "NumberToDate", group, one, engine::numberToDate,
        {"NumberToDate(number)",
         "The date of a number: yyyymmdd, Unix seconds, Windows file time, or spreadsheet days; moments are "
         "shown in the time zone of the machine.",
         "NumberToDate(20210315)", "2021-03-15"}),
    pureFunction("Day", group, one, engine::day,
                 {"Day(date)", "The day of the month of a date.", "Day('2021-03-15')", "15"}),
    pureFunction("Month", group, one, engine::month,
                 {"Month(date)", "The month of a date, 1 to 12.", "Month('2021-03-15')", "3"}),
    pureFunction("Year", group, one, engine::year,
                 {"Year(date)", "The year of a date.", "Year('2021-03-15')", "2021"}),
    pureFunction("Weekday", group, one, engine::weekday,
                 {"Weekday(date)", "The day of the week, 0 for Sunday to 6 for Saturday.",
                  "Weekday('2021-03-15')", "1"}),
    pureFunction("Hour", group, one, engine::hour,
                 {"Hour(time)", "The hour of a time, 0 to 23.", "Hour('12:30:45.250')", "12"}),
    pureFunction("Minute", group, one, engine::minute,
                 {"Minute(time)", "The minute of a time.", "Minute('12:30:45.250')", "30"}),
    pureFunction(
        "Second", group, one, engine::second,
        {"Second(time)", "The second of a time with its fraction.", "Second('12:30:45.250')", "45.25"}),
    pureFunction("GetDate", group, one, engine::getDate,
                 {"GetDate(dateTime)", "The date of a date and time.", "GetDate('2021-03-15 12:30:00')",
                  "2021-03-15"}),
    pureFunction("GetTime", group, one, engine::getTime,
                 {"GetTime(dateTime)", "The time of a date and time.", "GetTime('2021-03-15 12:30:00')",
                  "12:30:00.000"}),
    alsoNamed("Date_Part",
              pureFunction(
                  "Extract", group, Arity::exactly(2), engine::extract,
                  {"Extract(part From date)",
                   "A part of a date or time as a number: year, quarter, month, week and isoyear (ISO 8601), "
                   "day, doy (day of the year), dow (0 for Sunday), isodow (7 for Sunday), hour, minute, "
                   "second. NULL where there is none. Extract('year', date) is the same.",
                   "Extract(quarter From '2021-05-15')", "2"})),
    alsoNamed(
        "DateTrunc",
        pureFunction(
            "Date_Trunc", group, Arity::exactly(2), engine::dateTrunc,
            {"Date_Trunc(part, date)",
             "The beginning of the year, quarter, month, week (a Monday), day, hour, minute or second "
             "in which a date or time lies; a date stays a date. NULL for a part of the date of a time.",
             "Date_Trunc('month', '2021-05-15')", "2021-05-01"})),
};

} // namespace

std::span<const FunctionRecord> dateTimeRecords() {
    return records;
}

} // namespace orvane::adaptor
