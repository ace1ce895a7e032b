#include "NumberPattern.h"

namespace orvane::engine {

namespace {

constexpr QChar perMille(0x2030);

bool isExponentLetter(QChar character) {
    return character == QLatin1Char('E') || character == QLatin1Char('e');
}

} // namespace

/// Reads a pattern character by character into its sections.
class NumberPatternParser {
public:
    explicit NumberPatternParser(NumberPattern& pattern) : pattern_(pattern) { startSection(); }

    void parse(const QString& text) {
        // An exponent needs a sign behind its letter, so that a pattern cannot end with one, not even as a
        // literal.
        pattern_.valid_ = text.isEmpty() || !isExponentLetter(text.back());
        for (int i = 0; i < text.size() && pattern_.valid_; ++i) {
            if (text.at(i) == QLatin1Char('\\')) {
                rejectUnsignedExponent();
                if (++i < text.size()) {
                    literal(text.at(i));
                    previous_ = QChar();
                }
            } else {
                character(text.at(i));
                previous_ = text.at(i);
            }
        }
        closeRun(PatternLiteral::Suffix);
    }

private:
    PatternSection& section() { return pattern_.sections_.back(); }
    void reject() { pattern_.valid_ = false; }
    bool inInteger() { return !afterPoint_ && !section().exponent; }

    void startSection() {
        pattern_.sections_.append(PatternSection());
        afterPoint_ = false;
        atStart_ = true;
        previous_ = QChar();
    }

    void rejectUnsignedExponent() {
        if (section().exponent && isExponentLetter(previous_)) {
            reject();
        }
    }

    void character(QChar character) {
        const bool isSign = character == QLatin1Char('+') || character == QLatin1Char('-');
        if (isSign && section().exponent && isExponentLetter(previous_)) {
            section().exponentPlus = character == QLatin1Char('+');
            return;
        }
        rejectUnsignedExponent();
        switch (character.unicode()) {
        case '#':
        case '0': placeholder(character); break;
        case '.': decimalPoint(); break;
        case ',': comma(); break;
        case '%': scaledLiteral(character, 2); break;
        case perMille.unicode(): scaledLiteral(character, 3); break;
        case 'E':
        case 'e': exponentLetter(character); break;
        case ';':
            closeRun(PatternLiteral::Suffix);
            startSection();
            break;
        default: literal(character);
        }
    }

    void placeholder(QChar character) {
        closeRun(run_.kind);
        atStart_ = false;
        PatternSection& current = section();
        if (current.exponent) {
            if (character == QLatin1Char('0')) {
                ++current.exponentDigits;
            }
            return;
        }
        if (afterPoint_) {
            ++current.fractionDigits;
        } else {
            ++current.integerDigits;
            if (previous_ == QLatin1Char(',')) { // it only groups, then
                current.scaleBy(3);
                current.commaThenDigit = true;
            }
        }
        current.zeroPlaceholder |= character == QLatin1Char('0');
    }

    void decimalPoint() {
        closeRun(run_.kind);
        if (!inInteger()) {
            reject();
        }
        atStart_ = false;
        afterPoint_ = true;
    }

    void comma() {
        if (!inInteger()) {
            literal(QLatin1Char(','));
            return;
        }
        closeRun(run_.kind);
        atStart_ = false;
        section().grouping = true;
        if (section().scale < 3) {
            reject();
        }
        section().scaleBy(-3);
    }

    void scaledLiteral(QChar character, int power) {
        section().scaleBy(power);
        literal(character);
    }

    void exponentLetter(QChar character) {
        if (atStart_) { // no number to have one: a word
            literal(character);
            return;
        }
        closeRun(run_.kind == PatternLiteral::Prefix ? PatternLiteral::Prefix
                                                     : PatternLiteral::BeforeExponent);
        if (section().exponent) {
            reject();
        }
        section().exponent = true;
    }

    void literal(QChar character) {
        if (run_.text.isEmpty()) {
            startRun();
        }
        run_.text += character;
    }

    void startRun() {
        const PatternSection& current = section();
        if (atStart_) {
            run_.kind = PatternLiteral::Prefix;
            run_.position = 0;
        } else if (current.exponent) {
            run_.kind = PatternLiteral::InExponent;
            run_.position = current.exponentDigits;
        } else if (afterPoint_) {
            run_.kind = PatternLiteral::InFraction;
            run_.position = current.fractionDigits;
        } else {
            run_.kind = PatternLiteral::InInteger;
            run_.position = current.integerDigits;
        }
    }

    void closeRun(PatternLiteral::Kind kind) {
        if (!run_.text.isEmpty()) {
            run_.kind = kind;
            section().literals.append(run_);
            run_.text.clear();
        }
    }

    NumberPattern& pattern_;
    PatternLiteral run_;
    QChar previous_; ///< null at the start of a section and behind an escaped character
    bool afterPoint_ = false;
    bool atStart_ = true; ///< nothing but literals so far in the section
};

NumberPattern::NumberPattern(const QString& pattern) {
    NumberPatternParser(*this).parse(pattern);
}

} // namespace orvane::engine
