#include "host/adaptor/module/Series.h"

#include <orvane/engine/functions/Converters.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>

namespace orvane::adaptor {

namespace {

/// No series is longer; a cursor's place has to fit, and nobody waits for more.
constexpr double mostValues = 1e15;

bool isWhole(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_INTEGER;
}
bool isNumber(sqlite3_value* value) {
    return isWhole(value) || sqlite3_value_type(value) == SQLITE_FLOAT;
}

[[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string("Generate_Series: ") + what);
}

struct Unit {
    const char* name;
    std::int64_t months;
    std::int64_t milliseconds;
};
constexpr std::int64_t day = 86400000;
constexpr Unit units[] = {{"year", 12, 0},      {"month", 1, 0},      {"week", 0, 7 * day}, {"day", 0, day},
                          {"hour", 0, 3600000}, {"minute", 0, 60000}, {"second", 0, 1000}};

/// "month", "3 months", "-1 day".
void readDistance(const std::string& text, std::int64_t& months, std::int64_t& milliseconds) {
    constexpr double mostUnits = 1e6;
    std::size_t used = 0;
    double count = 1;
    try {
        count = std::stod(text, &used);
    } catch (const std::logic_error&) {
        used = 0;
    }
    std::string name = text.substr(used);
    name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
    name.erase(name.find_last_not_of(' ') + 1);
    if (name.size() > 1 && (name.back() == 's' || name.back() == 'S')) {
        name.pop_back();
    }
    const auto* const unit = std::find_if(std::begin(units), std::end(units), [&name](const Unit& each) {
        return sqlite3_stricmp(each.name, name.c_str()) == 0;
    });
    if (unit == std::end(units) || count != std::trunc(count) || std::abs(count) > mostUnits) {
        fail("expected a step such as '1 day' or '3 months'");
    }
    months = unit->months * static_cast<std::int64_t>(count);
    milliseconds = unit->milliseconds * static_cast<std::int64_t>(count);
}

} // namespace

std::optional<Series> Series::of(sqlite3_value* first, sqlite3_value* last, sqlite3_value* step) {
    for (sqlite3_value* const value : {first, last, step}) {
        if (value && sqlite3_value_type(value) == SQLITE_NULL) {
            return std::nullopt;
        }
    }
    Series series;
    if (isWhole(first) && isWhole(last) && (!step || isWhole(step))) {
        series.setIntegers(sqlite3_value_int64(first), sqlite3_value_int64(last),
                           step ? sqlite3_value_int64(step) : 1);
    } else if (isNumber(first) && isNumber(last) && (!step || isNumber(step))) {
        series.setReals(sqlite3_value_double(first), sqlite3_value_double(last),
                        step ? sqlite3_value_double(step) : 1);
    } else {
        series.setDates(first, last, step);
    }
    return series;
}

void Series::setIntegers(std::int64_t first, std::int64_t last, std::int64_t step) {
    if (step == 0) {
        fail("the step is 0");
    }
    first_ = first;
    step_ = step;
    if (step > 0 ? first > last : first < last) {
        return;
    }
    // Differences of 64 bits fit where there is no sign.
    const std::uint64_t distance = step > 0
                                       ? static_cast<std::uint64_t>(last) - static_cast<std::uint64_t>(first)
                                       : static_cast<std::uint64_t>(first) - static_cast<std::uint64_t>(last);
    const std::uint64_t size =
        step > 0 ? static_cast<std::uint64_t>(step) : 0 - static_cast<std::uint64_t>(step);
    count_ = static_cast<std::int64_t>(
        std::min<std::uint64_t>(distance / size, static_cast<std::uint64_t>(mostValues)) + 1);
}

void Series::setReals(double first, double last, double step) {
    const double steps = (last - first) / step;
    if (step == 0 || !std::isfinite(first) || !std::isfinite(last) || !std::isfinite(step)) {
        fail("expected finite numbers and a step that is not 0");
    }
    // The last value counts although the step is no exact number.
    constexpr double tolerance = 1e-9;
    kind_ = Kind::Reals;
    firstReal_ = first;
    stepReal_ = step;
    count_ =
        steps < 0 ? 0 : static_cast<std::int64_t>(std::min(std::floor(steps + tolerance), mostValues)) + 1;
}

void Series::setDates(sqlite3_value* first, sqlite3_value* last, sqlite3_value* step) {
    constexpr int dateLength = 10;
    firstDate_ = engine::toDateTime(first);
    const QDateTime end = engine::toDateTime(last);
    if (!firstDate_.isValid() || !end.isValid()) {
        fail("expected two numbers or two dates");
    }
    kind_ = Kind::Dates;
    readDistance(step ? engine::toString(step) : "1 day", months_, milliseconds_);
    if (months_ == 0 && milliseconds_ == 0) {
        fail("the step is 0");
    }
    hasTime_ = sqlite3_value_bytes(first) > dateLength || sqlite3_value_bytes(last) > dateLength ||
               milliseconds_ % day != 0;
    const bool isUpwards = months_ > 0 || milliseconds_ > 0;
    const auto isWithin = [&](std::int64_t place) {
        const QDateTime date = dateAt(place);
        return date.isValid() && (isUpwards ? date <= end : date >= end);
    };
    constexpr double daysOfMonth = 28; // no month is shorter
    const double smallest =
        months_ != 0 ? std::abs(static_cast<double>(months_)) * daysOfMonth * static_cast<double>(day)
                     : std::abs(static_cast<double>(milliseconds_));
    const double span = std::abs(static_cast<double>(firstDate_.msecsTo(end)));
    // The first place that lies beyond: halves tell it, for dates only grow or only shrink.
    std::int64_t low = 0;
    for (auto high = static_cast<std::int64_t>(std::min(span / smallest, mostValues)) + 1; low < high;) {
        const std::int64_t middle = low + (high - low) / 2;
        if (isWithin(middle)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    count_ = low;
}

QDateTime Series::dateAt(std::int64_t place) const {
    return months_ != 0 ? firstDate_.addMonths(static_cast<int>(months_ * place))
                        : firstDate_.addMSecs(milliseconds_ * place);
}

void Series::setValue(sqlite3_context* context) const {
    switch (kind_) {
    case Kind::Integers:
        sqlite3_result_int64(context, static_cast<std::int64_t>(static_cast<std::uint64_t>(first_) +
                                                                static_cast<std::uint64_t>(step_) *
                                                                    static_cast<std::uint64_t>(place_)));
        return;
    case Kind::Reals:
        sqlite3_result_double(context, firstReal_ + stepReal_ * static_cast<double>(place_));
        return;
    case Kind::Dates: break;
    }
    const QDateTime date = dateAt(place_);
    const QByteArray text = (hasTime_ ? engine::toString(date) : engine::toString(date.date())).toUtf8();
    sqlite3_result_text(context, text.constData(), text.size(), SQLITE_TRANSIENT);
}

} // namespace orvane::adaptor
