#include "platform/utils/Patterns.h"

#include <QRegularExpression>

namespace orvane::utils {

namespace {

const QLatin1String matchesNothing("(?!)");

/// Puts the expression together from the pieces between runs. Each piece matches a fixed number of
/// characters, so its first place after the piece before it is as good as any other: the piece is put in an
/// atomic group, and only the last one, which must stand at the end of the text, is searched from there.
class Assembler {
public:
    void literal(QChar unit) { literals_ += unit; }
    void anyCharacter() { expression(QLatin1String(".")); }
    void expression(const QString& text) {
        flushLiterals();
        piece_ += text;
    }
    void anyRun() {
        closePiece();
        afterRun_ = true;
    }

    QString finish() {
        flushLiterals();
        if (afterRun_ && !piece_.isEmpty()) {
            result_ += QLatin1String(".*");
        }
        if (!afterRun_ || !piece_.isEmpty()) {
            result_ += piece_ + QLatin1String("\\z");
        }
        return result_;
    }

private:
    void flushLiterals() {
        piece_ += QRegularExpression::escape(literals_);
        literals_.clear();
    }
    void closePiece() {
        flushLiterals();
        if (!piece_.isEmpty()) {
            result_ += afterRun_ ? QLatin1String("(?>.*?") + piece_ + QLatin1Char(')') : piece_;
        }
        piece_.clear();
    }

    QString result_ = QStringLiteral("(?s)\\A");
    QString piece_;
    QString literals_;
    bool afterRun_ = false;
};

/// Reads whole characters, so that a class holds no half of a surrogate pair.
class CharacterReader {
public:
    explicit CharacterReader(const QString& text) : text_(text) {}
    bool atEnd() const { return position_ >= text_.size(); }
    QChar peek() const { return atEnd() ? QChar() : text_.at(position_); }
    uint next() {
        const QChar unit = text_.at(position_++);
        if (unit.isHighSurrogate() && peek().isLowSurrogate()) {
            return QChar::surrogateToUcs4(unit, text_.at(position_++));
        }
        return unit.unicode();
    }

private:
    const QString& text_;
    int position_ = 0;
};

QString codePoint(uint character) {
    return QStringLiteral("\\x{%1}").arg(character, 0, 16);
}

/// Reads a class after its opening bracket.
QString classExpression(CharacterReader& reader) {
    bool negated = false;
    if (reader.peek() == QLatin1Char('^')) {
        negated = true;
        reader.next();
    }
    QString members;
    if (reader.peek() == QLatin1Char(']')) {
        members += codePoint(reader.next());
    }
    bool mayStartRange = false;
    uint previous = 0;
    while (!reader.atEnd() && reader.peek() != QLatin1Char(']')) {
        const uint character = reader.next();
        const bool isRange =
            character == '-' && mayStartRange && !reader.atEnd() && reader.peek() != QLatin1Char(']');
        if (!isRange) {
            members += codePoint(character);
            mayStartRange = true;
            previous = character;
            continue;
        }
        mayStartRange = false;
        if (const uint last = reader.next(); previous <= last) {
            members += codePoint(previous) + QLatin1Char('-') + codePoint(last);
        }
    }
    if (reader.atEnd()) {
        return matchesNothing;
    }
    reader.next();
    if (members.isEmpty()) {
        return negated ? QLatin1String(".") : matchesNothing;
    }
    return (negated ? QLatin1String("[^") : QLatin1String("[")) + members + QLatin1Char(']');
}

} // namespace

QString globToRegular(const QString& pattern) {
    Assembler assembler;
    CharacterReader reader(pattern);
    while (!reader.atEnd()) {
        const uint character = reader.next();
        switch (character) {
        case '*': assembler.anyRun(); break;
        case '?': assembler.anyCharacter(); break;
        case '[': assembler.expression(classExpression(reader)); break;
        default:
            for (const QChar unit : QString::fromUcs4(&character, 1)) {
                assembler.literal(unit);
            }
        }
    }
    return assembler.finish();
}

QString likeToRegular(const QString& pattern, QChar escape) {
    Assembler assembler;
    for (int i = 0; i < pattern.size(); ++i) {
        const QChar unit = pattern.at(i);
        if (!escape.isNull() && unit == escape) {
            if (++i == pattern.size()) {
                return matchesNothing;
            }
            assembler.literal(pattern.at(i));
        } else if (unit == QLatin1Char('%')) {
            assembler.anyRun();
        } else if (unit == QLatin1Char('_')) {
            assembler.anyCharacter();
        } else {
            assembler.literal(unit);
        }
    }
    return assembler.finish();
}

} // namespace orvane::utils
