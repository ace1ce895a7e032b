#include "host/providers/text/ColumnForm.h"

#include <cpl_port.h>

#include <QMetaType>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace orvane::files {

namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool equals(std::string_view text, std::string_view word) {
    return text.size() == word.size() && EQUALN(text.data(), word.data(), word.size());
}

/// Whether the text stands for a missing value among others.
bool isMissing(std::string_view text) {
    static constexpr std::string_view missingMarks[] = {"na", "n/a", "#n/a", "null", "nan", "-", ".."};
    return text.empty() ||
           (text.size() <= 4 && std::any_of(std::begin(missingMarks), std::end(missingMarks),
                                            [text](auto mark) { return equals(text, mark); }));
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

template<class Number>
std::optional<Number> numberInText(std::string_view text) {
    Number number{};
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

/// Whether a number is written as a code: with a needless zero at its front, as a whole number that is too
/// long for one, or as a telephone number after a plus. As a number it would lose something.
bool isCode(std::string_view number) {
    constexpr std::size_t shortestTelephone = 10; // digits of one with the country
    const bool isSigned = number.front() == '-' || number.front() == '+';
    const auto digits = number.substr(isSigned ? 1 : 0);
    if (digits.size() > 1 && digits[0] == '0' && isDigit(digits[1])) {
        return true;
    }
    const bool isTelephone = number.front() == '+' && digits.size() >= shortestTelephone;
    return (isTelephone || digits.size() > 18) && std::all_of(digits.begin(), digits.end(), isDigit) &&
           (isTelephone || !numberInText<std::int64_t>(number));
}

std::string textOfReal(double value, char decimalPoint) {
    const double magnitude = std::fabs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e15);
    std::array<char, 40> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   isPlain ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    std::string text(digits.data(), end);
    const auto point = text.find('.');
    if (point != std::string::npos) {
        text[point] = decimalPoint;
    } else if (isPlain) { // or it would be taken for an integer
        text += {decimalPoint, '0'};
    }
    return text;
}

bool isMoment(TextType type) {
    return type == TextType::Date || type == TextType::Time || type == TextType::DateTime;
}

} // namespace

TextType typeOfBoth(TextType a, TextType b) {
    const auto isPair = [a, b](TextType one, TextType other) {
        return (a == one && b == other) || (a == other && b == one);
    };
    if (a == b || b == TextType::None) {
        return a;
    }
    if (a == TextType::None) {
        return b;
    }
    if (isPair(TextType::Integer, TextType::Real)) {
        return TextType::Real;
    }
    return isPair(TextType::Date, TextType::DateTime) ? TextType::DateTime : TextType::Text;
}

std::optional<double> realInText(std::string_view text, bool takesComma) {
    text = trimmed(text);
    std::array<char, 64> copy;
    const auto comma = takesComma ? text.find(',') : std::string_view::npos;
    if (comma != std::string_view::npos && text.size() < copy.size()) {
        std::copy(text.begin(), text.end(), copy.begin());
        copy[comma] = text.find('.') == std::string_view::npos ? '.' : ',';
        text = {copy.data(), text.size()};
    }
    const auto number = numberInText<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

ColumnKind ColumnForm::kind() const {
    switch (type) {
    case TextType::Integer:
    case TextType::Boolean: return ColumnKind::Int64;
    case TextType::Real: return ColumnKind::Double;
    default: return ColumnKind::Text;
    }
}

int ColumnForm::metaType() const {
    switch (type) {
    case TextType::Integer: return QMetaType::LongLong;
    case TextType::Real: return QMetaType::Double;
    case TextType::Boolean: return QMetaType::Bool;
    case TextType::Date: return QMetaType::QDate;
    case TextType::Time: return QMetaType::QTime;
    case TextType::DateTime: return QMetaType::QDateTime;
    default: return QMetaType::QString;
    }
}

void ColumnForm::read(std::string_view text, bool isQuoted, ColumnBuilder& builder) const {
    switch (type) {
    case TextType::Integer: builder.appendOrNull(numberInText<std::int64_t>(trimmed(text))); return;
    case TextType::Real: builder.appendOrNull(realInText(text, takesComma)); return;
    case TextType::Boolean: {
        text = trimmed(text);
        const bool isTrue = equals(text, trueWord);
        if (isTrue || equals(text, falseWord)) {
            builder.append(std::int64_t{isTrue});
        } else {
            builder.appendNull();
        }
        return;
    }
    case TextType::Date:
    case TextType::Time:
    case TextType::DateTime: {
        const auto moment = momentInText(trimmed(text));
        if (!moment || (type == TextType::Time ? !moment->hasTime : !moment->hasDate)) {
            builder.appendNull();
            return;
        }
        thread_local std::string canonical;
        canonical.clear();
        appendMoment(*moment, type != TextType::Time, type != TextType::Date, canonical);
        builder.append(canonical);
        return;
    }
    default:
        if (text.empty() && !isQuoted) {
            builder.appendNull();
        } else {
            builder.append(text);
        }
    }
}

std::optional<std::string> ColumnForm::write(const QVariant& value) const {
    bool isNumber = false;
    switch (type) {
    case TextType::Integer: {
        const qlonglong number = value.toLongLong(&isNumber);
        const bool isWhole = value.userType() != QMetaType::Double ||
                             (std::fabs(value.toDouble()) < 9.2e18 && value.toDouble() == double(number));
        return isNumber && isWhole ? std::optional(std::to_string(number)) : std::nullopt;
    }
    case TextType::Real: {
        const double number = value.toDouble(&isNumber);
        return isNumber && std::isfinite(number) ? std::optional(textOfReal(number, decimalPoint))
                                                 : std::nullopt;
    }
    case TextType::Boolean: {
        const qlonglong number = value.toLongLong(&isNumber);
        if (!isNumber || number < 0 || number > 1) {
            return std::nullopt;
        }
        return number != 0 ? trueWord : falseWord;
    }
    case TextType::Date:
    case TextType::Time:
    case TextType::DateTime: {
        const auto found = momentOf(value);
        const bool needsDate = type != TextType::Time, needsTime = type != TextType::Date;
        if (!found || (needsDate && !found->hasDate) || (!needsDate && !found->hasTime)) {
            return std::nullopt;
        }
        std::string text;
        appendMoment(*found, needsDate, needsTime, momentForm, text);
        return text;
    }
    default: return value.toString().toStdString();
    }
}

void FormFinder::add(std::string_view text, bool isQuoted) {
    const std::string_view value = trimmed(text);
    allQuoted_ = allQuoted_ && (isQuoted || value.empty());
    hasValue_ = hasValue_ || !value.empty();
    if (form_.type == TextType::Text) {
        return;
    }
    if (isMissing(value)) {
        hasEmpty_ = hasEmpty_ || value.empty();
        if (form_.missing.empty()) {
            form_.missing = value;
        }
        return;
    }
    form_.type = typeOfBoth(form_.type, classify(value));
}

TextType FormFinder::classify(std::string_view text) {
    if (isMoment(form_.type)) {
        return classifyMoment(text);
    }
    if (isDigit(text.front()) || std::string_view("-+.").find(text.front()) != std::string_view::npos) {
        const bool isInteger = numberInText<std::int64_t>(text).has_value();
        if (!isInteger && !realInText(text, form_.takesComma)) {
            return classifyMoment(text);
        }
        if (isInteger || isCode(text)) {
            return isCode(text) ? TextType::Text : TextType::Integer;
        }
        hasPoint_ = hasPoint_ || text.find('.') != std::string_view::npos;
        hasComma_ = hasComma_ || text.find(',') != std::string_view::npos;
        return hasPoint_ && hasComma_ ? TextType::Text : TextType::Real;
    }
    if (!equals(text, "true") && !equals(text, "false")) {
        return TextType::Text;
    }
    if (form_.type == TextType::None) { // written as the first: true, True, TRUE
        if (text[1] < 'a') {
            form_.falseWord = "FALSE";
            form_.trueWord = "TRUE";
        } else if (text[0] < 'a') {
            form_.falseWord = "False";
            form_.trueWord = "True";
        }
    }
    return TextType::Boolean;
}

TextType FormFinder::classifyMoment(std::string_view text) {
    MomentForm form;
    const auto moment = momentInText(text, &form);
    if (!moment) {
        return TextType::Text;
    }
    if (!moment->hasTime) { // the form of the time stays
        if (form_.type == TextType::None) {
            form_.momentForm.dateSeparator = form.dateSeparator;
        }
        return TextType::Date;
    }
    form.decimals = std::max(form.decimals, form_.momentForm.decimals);
    if (hasTime_ && form.zone != form_.momentForm.zone) {
        form.zone.clear();
    }
    hasTime_ = true;
    form_.momentForm = std::move(form);
    return moment->hasDate ? TextType::DateTime : TextType::Time;
}

ColumnForm FormFinder::form(std::optional<TextType> declared) const {
    ColumnForm form = form_;
    form.quotesAll = allQuoted_ && hasValue_;
    form.decimalPoint = hasComma_ ? ',' : '.';
    if (form.type == TextType::Integer && declared == TextType::Boolean) {
        form.falseWord = "0";
        form.trueWord = "1";
    }
    if (declared) {
        form.type = *declared;
    } else if (form.type == TextType::None) {
        form.type = TextType::Text;
    }
    if (hasEmpty_ || form.type == TextType::Text) {
        form.missing.clear();
    }
    return form;
}

} // namespace orvane::files
