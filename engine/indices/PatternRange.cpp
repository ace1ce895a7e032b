#include "engine/indices/PatternRange.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::engine {

namespace {

/// Whether the order puts the letter after the consonant that follows it in writing, so that "letter +
/// consonant" comes before the letter alone. Unicode's property Logical_Order_Exception, for the scripts of
/// the basic plane.
bool isOrderedAfterItsSuccessor(QChar character) {
    constexpr std::array<std::pair<ushort, ushort>, 5> ranges = {
        {{0x0e40, 0x0e44}, {0x0ec0, 0x0ec4}, {0x19b5, 0x19b7}, {0x19ba, 0x19ba}, {0xaab5, 0xaabc}}};
    return std::any_of(ranges.begin(), ranges.end(), [character](const auto& range) {
        return range.first <= character.unicode() && character.unicode() <= range.second;
    });
}

/// The text before the first wildcard, as far as every text that begins with it cannot come before it.
QString literalPrefix(const QString& pattern, quint8 operation) {
    const QString wildcards = operation == EngineIndices::Like ? QStringLiteral("%_") : QStringLiteral("*?[");
    const auto end = std::find_if(pattern.begin(), pattern.end(),
                                  [&wildcards](QChar character) { return wildcards.contains(character); });
    QString prefix = pattern.left(static_cast<int>(end - pattern.begin()));
    while (!prefix.isEmpty() && isOrderedAfterItsSuccessor(prefix.back())) {
        prefix.chop(1);
    }
    return prefix;
}

/// Whether every text that begins with `character` comes before every text that begins with the next one. It
/// does not where the order is one of whole words (a control character appended changes nothing, so letters
/// may join with what follows them), nor where the next code is that of a letter or sign ordered elsewhere
/// ("Z" and "[", "Я" and "а").
bool isFollowedByNextCode(QChar character, const QCollator& collator) {
    if (character.isSurrogate() || character.unicode() == 0xffff) {
        return false;
    }
    const QString text(character);
    const QString next(QChar(character.unicode() + 1));
    return collator.compare(text, text + QChar(1)) < 0 && collator.compare(text, next) < 0;
}

} // namespace

PatternRange patternRange(const QString& pattern, quint8 operation, const QCollator& collator) {
    if (operation != EngineIndices::Like && operation != EngineIndices::Glob) {
        return {};
    }
    PatternRange range;
    range.lower = literalPrefix(pattern, operation);
    range.upper = range.lower;
    while (!range.upper.isEmpty()) {
        const QChar last = range.upper.back();
        range.upper.chop(1);
        if (isFollowedByNextCode(last, collator)) {
            range.upper += QChar(last.unicode() + 1);
            break;
        }
    }
    return range;
}

} // namespace orvane::engine
