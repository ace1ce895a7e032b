#include <orvane/engine/functions/Arithmetic.h>

#include "Barrier.h"
#include "PreparedArgument.h"
#include "StatementOrder.h"
#include "TextArguments.h"
#include "platform/utils/Numbers.h"
#include <orvane/engine/functions/Converters.h>

#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>

namespace orvane::engine {

namespace {

constexpr qint64 smallestInteger = std::numeric_limits<qint64>::min();
constexpr qint64 largestInteger = std::numeric_limits<qint64>::max();

bool areIntegers(sqlite3_value** values) {
    return sqlite3_value_type(values[0]) == SQLITE_INTEGER && sqlite3_value_type(values[1]) == SQLITE_INTEGER;
}

bool isNumber(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

void resultError(sqlite3_context* context, const char* message) {
    sqlite3_result_error(context, message, -1);
}

void resultFinite(sqlite3_context* context, double number, const char* messageElse) {
    if (std::isfinite(number)) {
        sqlite3_result_double(context, number);
    } else {
        resultError(context, messageElse);
    }
}

/// Calls `body` with the arguments as numbers, or leaves the result NULL.
template<typename Body>
void withNumber(sqlite3_value** values, Body&& body) {
    bool ok = false;
    if (const double x = toDouble(values[0], &ok); ok) {
        body(x);
    }
}

template<typename Body>
void withNumbers(sqlite3_value** values, Body&& body) {
    bool okA = false;
    bool okB = false;
    const double a = toDouble(values[0], &okA);
    const double b = toDouble(values[1], &okB);
    if (okA && okB) {
        body(a, b);
    }
}

void resultJoined(sqlite3_context* context, sqlite3_value** values) {
    const unsigned char* a = utf8View(values[0]);
    const unsigned char* b = utf8View(values[1]);
    QVarLengthArray<unsigned char, 1024> joined;
    for (const unsigned char* text : {a, b}) {
        if (text != nullptr) {
            joined.append(text, static_cast<int>(std::strlen(reinterpret_cast<const char*>(text))));
        }
    }
    resultUtf8(context, joined.cbegin(), joined.cend());
}

bool sumFits(qint64 a, qint64 b) {
    return b > 0 ? a <= largestInteger - b : a >= smallestInteger - b;
}

void quotientOfIntegers(sqlite3_context* context, qint64 a, qint64 b) {
    if (b == 0) {
        resultError(context, "Division by zero");
    } else if (a == smallestInteger && b == -1) {
        resultError(context, "Integer overflow");
    } else {
        sqlite3_result_int64(context, a / b);
    }
}

} // namespace

namespace {

/// `direction` is 1 for the greatest, -1 for the least.
void extremeOf(sqlite3_context* context, const char* name, int direction, std::span<sqlite3_value*> values) {
    barrier(context, [&] {
        if (values.empty()) {
            throw std::runtime_error("wrong number of arguments to function " + std::string(name) + "()");
        }
        const StatementOrder* order = nullptr;
        sqlite3_value* best = values.front();
        for (sqlite3_value* const value : values.subspan(1)) {
            if (isNull(best) || isNull(value)) {
                best = isNull(best) ? value : best;
                continue;
            }
            order = order ? order : &ofStatement<StatementOrder>(context);
            best = direction * order->compare(cellOf(value), cellOf(best)) > 0 ? value : best;
        }
        sqlite3_result_value(context, best);
    });
}

} // namespace

void greatest(sqlite3_context* context, int count, sqlite3_value** values) {
    extremeOf(context, "Greatest", 1, {values, values + count});
}

void least(sqlite3_context* context, int count, sqlite3_value** values) {
    extremeOf(context, "Least", -1, {values, values + count});
}

void concatUTF16(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0]) || isNull(values[1])) {
            return;
        }
        if (areIntegers(values)) {
            const qint64 a = sqlite3_value_int64(values[0]);
            const qint64 b = sqlite3_value_int64(values[1]);
            if (sumFits(a, b)) {
                sqlite3_result_int64(context, a + b);
            } else {
                sqlite3_result_double(context, static_cast<double>(a) + static_cast<double>(b));
            }
        } else if (isNumber(values[0]) && isNumber(values[1])) {
            resultFinite(context, sqlite3_value_double(values[0]) + sqlite3_value_double(values[1]),
                         "Sum overflow.");
        } else {
            resultJoined(context, values);
        }
    });
}

void divide(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        withNumbers(values, [&](double a, double b) { resultFinite(context, a / b, "Division by zero"); });
    });
}

void quotient(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (areIntegers(values)) {
            quotientOfIntegers(context, sqlite3_value_int64(values[0]), sqlite3_value_int64(values[1]));
            return;
        }
        withNumbers(values, [&](double a, double b) {
            const double result = std::floor(a / b);
            if (!std::isfinite(result)) {
                resultError(context, "Division by zero");
            } else if (const auto whole = utils::wholePart(result)) {
                sqlite3_result_int64(context, *whole);
            } else {
                resultError(context, "Integer overflow");
            }
        });
    });
}

void power(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        withNumbers(values,
                    [&](double x, double y) { resultFinite(context, std::pow(x, y), "Power overflow"); });
    });
}

void xorLogical(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        withNumbers(values,
                    [&](double a, double b) { sqlite3_result_int(context, (a != 0.0) != (b != 0.0)); });
    });
}

void minimum(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        withNumbers(values, [&](double a, double b) { sqlite3_result_double(context, b < a ? b : a); });
    });
}

void maximum(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        withNumbers(values, [&](double a, double b) { sqlite3_result_double(context, b > a ? b : a); });
    });
}

void sign(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        withNumber(values, [&](double x) { sqlite3_result_int(context, x < 0.0 ? -1 : (x == 0.0 ? 0 : 1)); });
    });
}

void truncate(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        bool ok = false;
        if (const qint64 x = toInt64(values[0], &ok); ok) {
            sqlite3_result_int64(context, x);
        }
    });
}

void floor(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (sqlite3_value_type(values[0]) == SQLITE_INTEGER) {
            sqlite3_result_value(context, values[0]);
            return;
        }
        withNumber(values, [&](double x) {
            if (std::isnan(x)) {
                return;
            }
            sqlite3_result_int64(
                context, utils::wholePart(std::floor(x)).value_or(x < 0 ? smallestInteger : largestInteger));
        });
    });
}

void sqrt(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        bool ok = false;
        if (const double x = toDouble(values[0], &ok); ok && x >= 0.0) {
            sqlite3_result_double(context, std::sqrt(x));
        } else {
            resultError(context, "Square root from negative value");
        }
    });
}

void roundTo(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        const auto round = [context](double x, double step) {
            sqlite3_result_double(context, step == 0.0 ? std::round(x) : std::round(x / step) * step);
        };
        if (count > 1) {
            withNumbers(values, round);
        } else {
            withNumber(values, [&round](double x) { round(x, 0.0); });
        }
    });
}

void roundBy(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        bool okDigits = true;
        const qint64 digits = count > 1 ? toInt64(values[1], &okDigits) : 0;
        withNumber(values, [&](double x) {
            if (okDigits) {
                // Beyond the range of int no digit of a double is left, or all are.
                const auto places = static_cast<int>(std::clamp<qint64>(
                    digits, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
                sqlite3_result_double(context, utils::getRound(x, places));
            }
        });
    });
}

} // namespace orvane::engine
