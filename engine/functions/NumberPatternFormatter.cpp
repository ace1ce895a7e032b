#include "NumberPattern.h"

#include "platform/utils/Numbers.h"

#include <algorithm>
#include <cmath>

namespace orvane::engine {

namespace {

constexpr int significantDigits = 15; // what a double holds of any decimal number

/// Writes one number by one section, from left to right. The decimal digits are those of the number's
/// shortest text: they are scaled and rounded as written, so that no binary fraction shows.
class SectionFormatter {
public:
    SectionFormatter(const PatternSection& section, const QLocale& locale)
        : section_(section), locale_(locale) {}

    QString format(double number) {
        if (std::signbit(number) && number != 0.0) {
            text_ += locale_.negativeSign();
        }
        if (!std::isfinite(number)) {
            appendLiterals(PatternLiteral::Prefix);
            text_ += locale_.toString(std::abs(number));
        } else {
            utils::DecimalDigits digits(number);
            digits.point += static_cast<int>(section_.scale) - static_cast<int>(PatternSection::plainScale);
            section_.exponent ? writeWithExponent(digits) : writePlain(digits);
        }
        appendLiterals(PatternLiteral::Suffix);
        return text_;
    }

private:
    void writePlain(utils::DecimalDigits& digits) {
        const int fractionDigits = section_.fractionDigits;
        digits.round(fractionDigits);
        if (digits.point > significantDigits) {
            digits.keep(significantDigits);
        }
        appendLiterals(PatternLiteral::Prefix);
        QString whole;
        if (!digits.digits.empty() && digits.point > 0) {
            whole = digits.slice(0, digits.point);
        } else if (section_.zeroPlaceholder) {
            whole = QLatin1Char('0');
        }
        writeInteger(localDigits(whole), section_.integerDigits);
        if (fractionDigits > 0) {
            writeFraction(localDigits(digits.slice(digits.point, fractionDigits)));
        }
    }

    /// The mantissa has as many digits in front of the point as there are placeholders (at least one, at
    /// least four where a comma asks for a group) and as many behind it; so "0.00E+00" shows three
    /// significant digits.
    void writeWithExponent(utils::DecimalDigits& digits) {
        const int integerDigits = std::max<int>(section_.integerDigits, section_.commaThenDigit ? 4 : 1);
        const int fractionDigits = section_.fractionDigits;
        digits.keep(std::min(integerDigits + fractionDigits, significantDigits));

        appendLiterals(PatternLiteral::Prefix);
        writeInteger(localDigits(digits.slice(0, integerDigits)), integerDigits);
        if (fractionDigits > 0) {
            writeFraction(localDigits(digits.slice(integerDigits, fractionDigits)));
        }
        appendLiterals(PatternLiteral::BeforeExponent);
        writeExponent(digits.digits.empty() ? 0 : digits.point - integerDigits);
        appendLiterals(PatternLiteral::InExponent);
    }

    void writeExponent(int exponent) {
        text_ += locale_.exponential();
        if (exponent < 0) {
            text_ += locale_.negativeSign();
        } else if (section_.exponentPlus) {
            text_ += locale_.positiveSign();
        }
        const QString digits = QString::number(std::abs(exponent));
        text_ += localDigits(digits.rightJustified(section_.exponentDigits, QLatin1Char('0')));
    }

    QString localDigits(QString digits) const {
        const ushort zero = locale_.zeroDigit().unicode();
        if (zero == '0') {
            return digits;
        }
        for (QChar& digit : digits) {
            digit = QChar(static_cast<ushort>(zero + (digit.unicode() - '0')));
        }
        return digits;
    }

    void writeInteger(QString digits, int placeholders) {
        if (section_.grouping) {
            digits = utils::separateThousands(digits, QChar(), locale_.groupSeparator(), 0);
        }
        int start = text_.size();
        text_ += digits;
        for (const PatternLiteral& literal : section_.literals) {
            if (literal.kind != PatternLiteral::InInteger) {
                continue;
            }
            int index = text_.size() - placeholders + literal.position;
            if (section_.grouping) {
                index += literal.position / 3 - (placeholders >= 4 ? (placeholders - 1) / 3 : 0);
            }
            index = std::max(std::min(index, text_.size()), start);
            const bool behindSeparator =
                section_.grouping && index > start && text_.at(index - 1) == locale_.groupSeparator();
            text_.insert(index, behindSeparator ? literal.text + locale_.groupSeparator() : literal.text);
            start += literal.text.size();
        }
    }

    /// The decimal point and the digits behind it.
    void writeFraction(const QString& digits) {
        text_ += locale_.decimalPoint();
        int start = text_.size();
        text_ += digits;
        for (const PatternLiteral& literal : section_.literals) {
            if (literal.kind != PatternLiteral::InFraction) {
                continue;
            }
            const int index = start + literal.position + (section_.grouping ? literal.position / 3 : 0);
            text_.insert(std::min(index, text_.size() - 1), literal.text);
            start += literal.text.size();
        }
    }

    void appendLiterals(PatternLiteral::Kind kind) {
        for (const PatternLiteral& literal : section_.literals) {
            if (literal.kind == kind) {
                text_ += literal.text;
            }
        }
    }

    const PatternSection& section_;
    QLocale locale_;
    QString text_;
};

} // namespace

QString NumberPattern::format(double number, const QLocale& locale) const {
    int chosen = 0;
    if (sections_.size() > 1 && number < 0.0) {
        chosen = 1;
    } else if (sections_.size() > 2 && number == 0.0) {
        chosen = 2;
    }
    return SectionFormatter(sections_.at(chosen), locale)
        .format(sections_.size() > 1 ? std::abs(number) : number);
}

} // namespace orvane::engine
