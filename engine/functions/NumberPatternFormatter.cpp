#include "NumberPattern.h"

#include "platform/utils/Numbers.h"

#include <algorithm>
#include <cmath>

namespace orvane::engine {

namespace {

constexpr int significantDigits = 15; // what a double holds of any decimal number

/// Writes one number by one section, from left to right.
class SectionFormatter {
public:
    SectionFormatter(const PatternSection& section, const QLocale& locale)
        : section_(section), locale_(locale) {
        locale_.setNumberOptions(locale_.numberOptions() | QLocale::OmitGroupSeparator);
    }

    QString format(double number) {
        if (std::signbit(number) && number != 0.0) {
            text_ += locale_.negativeSign();
        }
        number = std::abs(number);
        if (number != 0.0 && section_.scale != PatternSection::plainScale) {
            number *= std::pow(10.0, static_cast<int>(section_.scale) -
                                         static_cast<int>(PatternSection::plainScale));
        }
        if (!std::isfinite(number)) {
            appendLiterals(PatternLiteral::Prefix);
            text_ += locale_.toString(number);
        } else if (section_.exponent) {
            writeWithExponent(number);
        } else {
            writePlain(number);
        }
        appendLiterals(PatternLiteral::Suffix);
        return text_;
    }

private:
    void writePlain(double number) {
        const int fractionDigits = section_.fractionDigits;
        number = utils::getRound(number, fractionDigits);
        appendLiterals(PatternLiteral::Prefix);
        const double whole = std::floor(number);
        QString digits;
        if (whole != 0.0) {
            digits = utils::castExponentialFormat(locale_.toString(whole, 'g', significantDigits), locale_,
                                                  nullptr);
        } else if (section_.zeroPlaceholder) {
            digits = locale_.zeroDigit();
        }
        writeInteger(digits, section_.integerDigits);
        if (fractionDigits > 0) {
            const QString fraction = locale_.toString(number - whole, 'f', fractionDigits);
            writeFraction(fraction.mid(fraction.indexOf(locale_.decimalPoint()) + 1));
        }
    }

    /// The mantissa has as many digits in front of the point as there are placeholders (at least one, at
    /// least four where a comma asks for a group) and as many behind it; so "0.00E+00" shows three
    /// significant digits.
    void writeWithExponent(double number) {
        const int integerDigits = std::max<int>(section_.integerDigits, section_.commaThenDigit ? 4 : 1);
        const int fractionDigits = section_.fractionDigits;
        const int shown = integerDigits + fractionDigits;
        const int precision = std::min(shown, significantDigits);

        // Rounded as written first: the scientific text alone would round the binary value.
        const int magnitude =
            number == 0.0 ? 0 : exponentOf(QString::number(number, 'e', significantDigits + 1));
        number = utils::getRound(number, precision - 1 - magnitude);
        const QString scientific = QString::number(number, 'e', precision - 1);
        QString digits = scientific.left(scientific.indexOf(QLatin1Char('e'))).remove(QLatin1Char('.'));
        digits += QString(shown - precision, QLatin1Char('0'));

        appendLiterals(PatternLiteral::Prefix);
        writeInteger(localDigits(digits.left(integerDigits)), integerDigits);
        if (fractionDigits > 0) {
            writeFraction(localDigits(digits.mid(integerDigits)));
        }
        appendLiterals(PatternLiteral::BeforeExponent);
        writeExponent(number == 0.0 ? 0 : exponentOf(scientific) - (integerDigits - 1));
        appendLiterals(PatternLiteral::InExponent);
    }

    static int exponentOf(const QString& scientific) {
        return scientific.mid(scientific.indexOf(QLatin1Char('e')) + 1).toInt();
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
