#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/Format.h>

namespace orvane::adaptor {

namespace {

constexpr const char* group = "Formatting";
constexpr Arity one = Arity::exactly(1);
constexpr Arity two = Arity::exactly(2);

const FunctionRecord records[] = {
    environmentFunction(
        "FormatNumber", group, one, engine::formatNumber,
        {"FormatNumber(value)",
         "A number with the thousands separators of the locale; an empty text for anything else, NULL "
         "included.",
         "FormatNumber(1234.5)", nullptr}),
    environmentFunction(
        "Deformat", group, one, engine::deformat,
        {"Deformat(text)",
         "A number of the locale as plain text with a point; any other text as it is, NULL as an empty "
         "one.",
         "Deformat('1234')", "1234"}),
    environmentFunction(
        "FormatDate", group, one, engine::formatDate,
        {"FormatDate(date)", "A date in the short form of the system.", "FormatDate('2021-03-15')", nullptr}),
    environmentFunction(
        "FormatTime", group, two, engine::formatTime,
        {"FormatTime(time, pattern)",
         "A time by a pattern of H, h, m, s, f and t; an empty one, and NULL, is HH:mm:ss.fff.",
         "FormatTime('13:05:09.123', 'hh:mm tt')", nullptr}),
    alsoNamed(
        "FormatNumberByPattern",
        environmentFunction("Format", group, two, engine::formatNumberByPattern,
                            {"Format(value, picture)",
                             "A number by a picture: # and 0 for digits, a point, a comma for thousands, "
                             "% and ‰, E+0, sections for negative numbers and zero after a semicolon. "
                             "NULL as the picture is an empty one.",
                             "Format(-5, '0;(0)')", "(5)"})),
};

} // namespace

std::span<const FunctionRecord> formatRecords() {
    return records;
}

} // namespace orvane::adaptor
