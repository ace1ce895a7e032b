#pragma once

#include <QRegularExpression>
#include <QString>

namespace orvane::tests {

/// What LIKE and glob patterns mean, as regular expressions. Slow, and plain to read.
class PatternExpression {
public:
    static QRegularExpression like(const QString& pattern, uint escape) {
        PatternExpression made(pattern);
        while (!made.atEnd()) {
            const uint character = made.next();
            if (escape != 0 && character == escape) {
                made.add(made.atEnd() ? QStringLiteral("(?!)") : codePoint(made.next()));
            } else {
                made.add(character == '%'   ? QStringLiteral(".*")
                         : character == '_' ? QStringLiteral(".")
                                            : codePoint(character));
            }
        }
        return made.finish();
    }

    static QRegularExpression glob(const QString& pattern) {
        PatternExpression made(pattern);
        while (!made.atEnd()) {
            const uint character = made.next();
            made.add(character == '*'   ? QStringLiteral(".*")
                     : character == '?' ? QStringLiteral(".")
                     : character == '[' ? made.readClass()
                                        : codePoint(character));
        }
        return made.finish();
    }

private:
    explicit PatternExpression(const QString& pattern) : characters_(pattern.toUcs4()) {}

    static QString codePoint(uint character) { return QStringLiteral("\\x{%1}").arg(character, 0, 16); }
    bool atEnd() const { return at_ == characters_.size(); }
    uint next() { return characters_[at_++]; }
    bool take(uint character) {
        const bool stands = !atEnd() && characters_[at_] == character;
        at_ += stands ? 1 : 0;
        return stands;
    }
    void add(const QString& expression) { expression_ += expression; }

    QString readClass() {
        const bool negated = take('^');
        QString members = take(']') ? codePoint(']') : QString();
        bool mayStartRange = false;
        for (uint previous = 0; !take(']');) {
            if (atEnd()) {
                return QStringLiteral("(?!)");
            }
            const uint character = next();
            if (character == '-' && mayStartRange && !atEnd() && characters_[at_] != ']') {
                const uint last = next();
                members +=
                    previous <= last ? codePoint(previous) + QLatin1Char('-') + codePoint(last) : QString();
                mayStartRange = false;
            } else {
                members += codePoint(character);
                previous = character;
                mayStartRange = true;
            }
        }
        return QLatin1String(negated ? "[^" : "[") + members + QLatin1Char(']');
    }

    QRegularExpression finish() const {
        return QRegularExpression(QLatin1String("(?s)\\A") + expression_ + QLatin1String("\\z"),
                                  QRegularExpression::CaseInsensitiveOption);
    }

    QVector<uint> characters_;
    int at_ = 0;
    QString expression_;
};

} // namespace orvane::tests
