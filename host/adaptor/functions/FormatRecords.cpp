#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/Format.h>

namespace orvane::adaptor {

namespace {

constexpr const char* group = "Formatting";
constexpr Arity one = Arity::exactly(1);
constexpr Arity two = Arity::exactly(2);

constexpr Documentation byPattern{"Format(value, pattern)",
                                  "A number by a picture: # and 0 for digits, a point, a comma for "
                                  "thousands, % and ‰, E+0, sections for negative "
                                  "numbers and zero after a semicolon.",
                                  "Format(-5, '0;(0)')", "(5)"};

const FunctionRecord records[] = {
    environmentFunction("FormatNumber", group, one, engine::formatNumber,
                        {"FormatNumber(value)", "A number with the thousands separators of the locale.",
                         "FormatNumber(1234.5)", nullptr}),
    environmentFunction(
        "Deformat", group, one, engine::deformat,
        {"Deformat(text)", "A number of the locale as plain text with a point.", "Deformat('1234')", "1234"}),
    environmentFunction(
        "FormatDate", group, one, engine::formatDate,
        {"FormatDate(date)", "A date in the short form of the system.", "FormatDate('2021-03-15')", nullptr}),
    environmentFunction("FormatTime", group, two, engine::formatTime,
                        {"FormatTime(time, pattern)",
                         "A time by a pattern of H, h, m, s, f and t; an empty one is HH:mm:ss.fff.",
                         "FormatTime('13:05:09.123', 'hh:mm tt')", nullptr}),
    environmentFunction("FormatNumberByPattern", group, two, engine::formatNumberByPattern, byPattern),
    environmentFunction("Format", group, two, engine::formatNumberByPattern, byPattern),
};

} // namespace

std::span<const FunctionRecord> formatRecords() {
    return records;
}

} // namespace orvane::adaptor
