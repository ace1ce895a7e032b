#include "host/postgres/conditions/ServerCondition.h"

#include "platform/utils/Utf8.h"

#include <QDate>
#include <QRegularExpression>
#include <QTime>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace orvane::postgres {

namespace {

using dp::Comparison;
using TextTest = dp::Condition::TextTest;

/// Of more ranges than this only the hull is asked for.
constexpr std::size_t mostRanges = 16;

bool isInteger(ValueKind kind) {
    switch (kind) {
    case ValueKind::Boolean:
    case ValueKind::Integer2:
    case ValueKind::Integer4:
    case ValueKind::Integer8:
    case ValueKind::Unsigned4:
    case ValueKind::WholeNumeric: return true;
    default: return false;
    }
}

bool isReal(ValueKind kind) {
    return kind == ValueKind::Real4 || kind == ValueKind::Real8 || kind == ValueKind::Numeric;
}

/// Whether the server's NaN, which we show as NULL, can occur.
bool hasNotANumber(ValueKind kind) {
    return isReal(kind) || kind == ValueKind::WholeNumeric;
}

bool isTemporal(ValueKind kind) {
    return kind == ValueKind::Date || kind == ValueKind::Time || kind == ValueKind::Moment ||
           kind == ValueKind::LocalMoment;
}

std::string numberText(std::int64_t number) {
    return std::to_string(number);
}

std::string numberText(double number) {
    if (std::isinf(number)) {
        return number > 0 ? "Infinity" : "-Infinity";
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

/// One range of numbers: from the least to the greatest of the type there is no bound.
template<class Number>
std::string rangeText(const std::string& name, dp::Range<Number> range, const char* type,
                      std::vector<Argument>& arguments) {
    using Limits = std::numeric_limits<Number>;
    const Number least = Limits::has_infinity ? -Limits::infinity() : Limits::min();
    const Number greatest = Limits::has_infinity ? Limits::infinity() : Limits::max();
    if (range.low == range.high) {
        return name + " = " + placeArgument(numberText(range.low), type, arguments);
    }
    std::string text;
    if (range.low != least) {
        text = name + " >= " + placeArgument(numberText(range.low), type, arguments);
    }
    if (range.high != greatest) {
        text += (text.empty() ? "" : " And ") + name +
                " <= " + placeArgument(numberText(range.high), type, arguments);
    }
    return text.empty() ? name + " Is Not Null" : text;
}

template<class Number>
std::string rangesText(const std::string& name, const std::vector<dp::Range<Number>>& ranges,
                       const std::string& type, std::vector<Argument>& arguments) {
    if (ranges.empty()) {
        return "false";
    }
    const bool arePoints =
        std::all_of(ranges.begin(), ranges.end(), [](const auto& range) { return range.low == range.high; });
    if (arePoints && ranges.size() > 1) {
        ArrayText list;
        for (const auto& range : ranges) {
            list.add(numberText(range.low));
        }
        return name + " = Any(" + placeArgument(std::move(list).finish(), (type + "[]").c_str(), arguments) +
               ")";
    }
    if (ranges.size() > mostRanges) {
        return rangeText<Number>(name, {ranges.front().low, ranges.back().high}, type.c_str(), arguments);
    }
    std::string text;
    for (const auto& range : ranges) {
        text += (text.empty() ? "(" : ") Or (") + rangeText(name, range, type.c_str(), arguments);
    }
    return text + ')';
}

/// The server keeps digits that a real number does not: what is rounded to a bound lies about it.
std::vector<dp::Range<double>> widened(std::vector<dp::Range<double>> ranges) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (auto& range : ranges) {
        range.low = std::nextafter(std::nextafter(range.low, -infinity), -infinity);
        range.high = std::nextafter(std::nextafter(range.high, infinity), infinity);
    }
    return ranges;
}

/// The least and the greatest double are infinite to servers that have no infinite decimals.
std::string decimalText(const std::string& name, const std::vector<dp::Range<double>>& ranges,
                        std::vector<Argument>& arguments) {
    auto wide = widened(ranges);
    std::erase_if(wide, [](const auto& range) { return range.low == range.high; }); // infinite
    if (wide.size() != ranges.size()) {
        return name + " Is Not Null";
    }
    for (auto& range : wide) {
        constexpr double greatest = std::numeric_limits<double>::max();
        constexpr double infinity = std::numeric_limits<double>::infinity();
        range.low = range.low <= -greatest ? -infinity : range.low;
        range.high = range.high >= greatest ? infinity : range.high;
    }
    return rangesText(name, wide, "numeric", arguments);
}

/// Whether the server reads the text as the value that our texts have in its place.
bool isTemporalText(ValueKind kind, const std::string& text) {
    static const QRegularExpression form(
        QStringLiteral(R"(\A(\d{4}-\d\d-\d\d)?( ?)(\d\d:\d\d:\d\d(\.\d{1,6})?)?\z)"));
    const QRegularExpressionMatch match = form.match(QString::fromUtf8(text.c_str()));
    if (!match.hasMatch() || text.find('\0') != std::string::npos) {
        return false;
    }
    const bool hasDate = match.capturedLength(1) > 0, hasTime = match.capturedLength(3) > 0;
    const bool isWhole = kind == ValueKind::Time   ? !hasDate && hasTime
                         : kind == ValueKind::Date ? hasDate && !hasTime
                                                   : hasDate;
    const bool isJoined = match.capturedLength(2) == (hasDate && hasTime ? 1 : 0);
    return isWhole && isJoined && (!hasDate || QDate::fromString(match.captured(1), Qt::ISODate).isValid()) &&
           (!hasTime || QTime::fromString(match.captured(3).left(8), Qt::ISODate).isValid()) &&
           (!hasDate || text.substr(0, 4) != "0000");
}

std::string temporalComparison(const std::string& name, TextTest test, const std::vector<std::string>& texts,
                               const char* type, std::vector<Argument>& arguments) {
    if (test == TextTest::Listed) {
        ArrayText list;
        for (const std::string& text : texts) {
            list.add(text);
        }
        return name + " = Any(" +
               placeArgument(std::move(list).finish(), (std::string(type) + "[]").c_str(), arguments) + ")";
    }
    const bool isUpper = test == TextTest::Less || test == TextTest::LessOrEqual;
    return name + (isUpper ? " <= " : " >= ") + placeArgument(texts.front(), type, arguments);
}

/// Years of four digits order as their texts do; the others come in any case.
std::optional<std::string> temporalText(const std::string& name, ValueKind kind,
                                        const dp::Condition& condition, std::vector<Argument>& arguments) {
    const TextTest test = condition.textTest();
    const bool isComparison = test != TextTest::None && test != TextTest::All && test != TextTest::NotListed;
    if (!isComparison || condition.collation() != dp::TextCollation::Binary || condition.texts().empty() ||
        !std::all_of(condition.texts().begin(), condition.texts().end(),
                     [kind](const std::string& text) { return isTemporalText(kind, text); })) {
        return std::nullopt;
    }
    if (kind == ValueKind::Time) {
        return temporalComparison(name, test, condition.texts(), "time", arguments);
    }
    const std::string others = " Or " + name + " < '0001-01-01' Or " + name + " > '9999-12-30'";
    if (kind == ValueKind::Date) {
        return temporalComparison(name, test, condition.texts(), "date", arguments) + others;
    }
    if (kind == ValueKind::Moment) {
        return temporalComparison(name, test, condition.texts(), "timestamp", arguments) + others;
    }
    // Clocks are put back: the order of what they show is that of the moments only but for a day.
    std::string text =
        temporalComparison(name + "::timestamp", test, condition.texts(), "timestamp", arguments);
    if (test != TextTest::Listed) {
        const bool isUpper = test == TextTest::Less || test == TextTest::LessOrEqual;
        text += " And " + name + (isUpper ? " <= " : " >= ") +
                placeArgument(condition.texts().front(), "timestamp", arguments) + "::timestamptz" +
                (isUpper ? " + " : " - ") + "'1 day'::interval";
    }
    return text + others;
}

std::optional<std::string> listedTexts(const std::string& name, const dp::Condition& condition,
                                       std::vector<Argument>& arguments) {
    if (condition.textTest() != TextTest::Listed || condition.collation() != dp::TextCollation::Binary) {
        return std::nullopt;
    }
    ArrayText list;
    for (const std::string& text : condition.texts()) {
        if (utf8::findIllFormed(text) != text.size()) {
            return std::nullopt; // which the server would refuse
        }
        list.add(text);
    }
    // Where the server takes more texts for equal than we do, more rows come.
    return name + "::text = Any(" + placeArgument(std::move(list).finish(), "text[]", arguments) + ")";
}

/// Nothing where all values pass.
std::optional<std::string> valuesText(const std::string& name, ValueKind kind, const dp::Condition& condition,
                                      std::vector<Argument>& arguments) {
    if (kind == ValueKind::Boolean) {
        const bool takesFalse = condition.accepts(std::int64_t{0});
        const bool takesTrue = condition.accepts(std::int64_t{1});
        return takesFalse && takesTrue ? name + " Is Not Null"
               : takesTrue             ? name
               : takesFalse            ? "Not " + name
                                       : "false";
    }
    if (isInteger(kind)) {
        const bool isDecimal = kind == ValueKind::WholeNumeric;
        return rangesText(kind == ValueKind::Unsigned4 ? name + "::int8" : name, condition.integers(),
                          isDecimal ? "numeric" : "int8", arguments);
    }
    if (isReal(kind)) {
        return kind == ValueKind::Numeric ? decimalText(name, condition.reals(), arguments)
                                          : rangesText(name, condition.reals(), "float8", arguments);
    }
    if (isTemporal(kind)) {
        return temporalText(name, kind, condition, arguments);
    }
    return kind == ValueKind::Text ? listedTexts(name, condition, arguments) : std::nullopt;
}

} // namespace

std::string placeArgument(std::string value, const char* type, std::vector<Argument>& arguments) {
    arguments.emplace_back(std::move(value));
    return '$' + std::to_string(arguments.size()) + "::" + type;
}

void ArrayText::add(std::string_view value) {
    text_ += text_.empty() ? "{\"" : ",\"";
    for (const char c : value) {
        if (c == '"' || c == '\\') {
            text_ += '\\';
        }
        text_ += c;
    }
    text_ += '"';
}

bool isTestable(ValueKind kind, Comparison comparison, dp::TextCollation collation) {
    switch (comparison) {
    case Comparison::Like:
    case Comparison::Glob: return false;
    case Comparison::IsNull:
    case Comparison::IsNotNull: return true;
    case Comparison::NotEqual:
    case Comparison::IsNot: return isInteger(kind) || isReal(kind);
    default: break;
    }
    const bool isEquality =
        comparison == Comparison::Equal || comparison == Comparison::Is || comparison == Comparison::In;
    return isInteger(kind) || isReal(kind) || isTemporal(kind) ||
           (collation == dp::TextCollation::Binary && kind == ValueKind::Text && isEquality);
}

std::optional<std::string> serverCondition(const std::string& name, ValueKind kind, dp::ScanTerm term,
                                           std::vector<Argument>& arguments) {
    if (isTemporal(kind)) {
        term.collation = dp::TextCollation::Binary; // digits in the same places have one order everywhere
    }
    const dp::Condition condition(term);
    const std::string null =
        hasNotANumber(kind) ? "(" + name + " Is Null Or " + name + " = 'NaN')" : name + " Is Null";
    if (condition.isNullTest()) {
        return condition.acceptsNull() ? null : name + " Is Not Null";
    }
    if (condition.acceptsNothing()) {
        return "false";
    }
    const std::size_t kept = arguments.size();
    const auto values = valuesText(name, kind, condition, arguments);
    if (!values) {
        arguments.resize(kept);
        return std::nullopt;
    }
    return '(' + *values + (condition.acceptsNull() ? " Or " + null : std::string()) + ')';
}

} // namespace orvane::postgres
