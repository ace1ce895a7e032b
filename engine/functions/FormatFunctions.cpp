#include <orvane/engine/functions/Format.h>

#include "Barrier.h"
#include "NumberPattern.h"
#include "PreparedArgument.h"
#include "TextArguments.h"
#include "TimePattern.h"
#include "platform/utils/Numbers.h"
#include <orvane/engine/functions/Converters.h>

#include <QLocale>

#include <optional>

namespace orvane::engine {

namespace {

/// The number that a text stands for in the locale, its thousands separators wherever they are.
std::optional<double> localNumber(QString text, const QLocale& locale) {
    bool ok = false;
    const double number = locale.toDouble(text.remove(locale.groupSeparator()), &ok);
    return ok ? std::optional(number) : std::nullopt;
}

} // namespace

void formatNumber(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const QLocale locale;
        const int type = sqlite3_value_type(values[0]);
        const auto number = type == SQLITE_INTEGER || type == SQLITE_FLOAT
                                ? std::optional(sqlite3_value_double(values[0]))
                                : localNumber(toQString(values[0]), locale);
        resultText(context, number ? utils::separateDouble(*number, locale) : QString());
    });
}

void deformat(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        const QString text = toQString(values[0]);
        const auto number = localNumber(text, QLocale());
        resultText(context, number ? utils::toLocalizedString(*number, QLocale::c()) : text);
    });
}

void formatDate(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (const QDate date = toDate(values[0]); date.isValid()) {
            resultText(context, QLocale::system().toString(date, QLocale::ShortFormat));
        }
    });
}

void formatTime(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (const QTime time = toTime(values[0]); time.isValid()) {
            resultText(context, formatTimeByPattern(time, toQString(values[1]), QLocale()));
        }
    });
}

void formatNumberByPattern(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        bool ok = false;
        const double number = toDouble(values[0], &ok);
        if (!ok) {
            return;
        }
        withPrepared<NumberPattern>(
            context, 1, [](const NumberPattern&) { return true; },
            [&] { return NumberPattern(toQString(values[1])); },
            [&](const NumberPattern& pattern) {
                if (pattern.isValid()) {
                    resultText(context, pattern.format(number, QLocale()));
                }
            });
    });
}

} // namespace orvane::engine
