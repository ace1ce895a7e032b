#pragma once

#include <QLocale>
#include <QString>
#include <QVarLengthArray>

namespace orvane::engine {

/// A piece of literal text in a number pattern, and where it goes.
struct PatternLiteral {
    enum Kind {
        Prefix,
        InInteger,  ///< behind `position` digits of the integer part, of as many as there are placeholders
        InFraction, ///< behind `position` digits of the fraction
        BeforeExponent, ///< between the mantissa and the exponent
        InExponent,
        Suffix
    };

    QString text;
    Kind kind = Prefix;
    int position = 0;
};

/// One section of a number pattern. The counters are as wide as they are and wrap around.
struct PatternSection {
    static constexpr unsigned plainScale = 307; ///< the exponent of ten 0

    bool exponent = false;        ///< "E+" or "E-" was seen
    bool grouping = false;        ///< thousands are separated
    bool exponentPlus = false;    ///< a positive exponent shows its sign
    bool zeroPlaceholder = false; ///< a zero in front of the point is shown
    bool commaThenDigit = false;  ///< a grouping comma stood directly before a placeholder
    unsigned fractionDigits : 4 = 0;
    unsigned integerDigits : 4 = 0;
    unsigned exponentDigits : 8 = 0;
    unsigned scale : 10 = plainScale; ///< the number is multiplied by 10^(scale - plainScale)
    QVarLengthArray<PatternLiteral, 4> literals;

    void scaleBy(int powerOfTen) { scale = (scale + static_cast<unsigned>(powerOfTen)) & 0x3FFU; }
};

/// A picture of a number, as spreadsheets have them: up to three sections between ";", of placeholders and
/// literals.
///
/// "#" and "0" stand for digits (a fraction always shows as many as it has placeholders; the integer part
/// shows all its digits, and a single zero only where "0" was used). "." is the decimal point, "," between
/// placeholders groups thousands and behind them divides by 1000, "%" and "‰" multiply and stand for
/// themselves, "E+0" and "E-0" behind a placeholder write an exponent, "\" takes the next character
/// literally; what is none of these is literal too. Literals before the first placeholder stand in front of
/// the whole number, however many digits it has. With two sections the second is for negative numbers, with
/// three the third for zero; these get the absolute value.
class NumberPattern {
public:
    explicit NumberPattern(const QString& pattern);

    /// False for an exponent letter without a sign, a second one, a second decimal point or one in the
    /// exponent, and for commas that divide too often.
    bool isValid() const { return valid_; }
    /// The number in the section for it, with the digits and signs of the locale.
    QString format(double number, const QLocale& locale) const;

private:
    friend class NumberPatternParser;

    QVarLengthArray<PatternSection, 3> sections_;
    bool valid_ = true;
};

} // namespace orvane::engine
