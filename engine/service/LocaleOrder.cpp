#include <orvane/engine/LocaleOrder.h>

#include "platform/utils/Utf8.h"
#include <orvane/engine/Collator.h>

#include <QLocale>
#include <QString>
#include <QVarLengthArray>

#include <algorithm>
#include <iterator>
#include <vector>

namespace orvane::engine {

namespace {

using Utf16 = QVarLengthArray<char16_t, 256>;

void toUtf16(std::string_view text, Utf16& out) {
    out.reserve(static_cast<int>(text.size()));
    for (std::size_t at = 0; at < text.size();) {
        const char32_t character = utf8::nextCharacter(text, at);
        if (character < 0x10000) {
            out.push_back(static_cast<char16_t>(character));
        } else {
            out.push_back(QChar::highSurrogate(character));
            out.push_back(QChar::lowSurrogate(character));
        }
    }
}

/// The lead bytes of U+0400 to U+047F in UTF-8 are 0xd0 and 0xd1.
bool leadsCyrillic(unsigned char byte) {
    return (byte & 0xfe) == 0xd0;
}

} // namespace

LocaleOrder::LocaleOrder(QCollator collator) : collator_(std::move(collator)) {
    ranks_.fill(noRank);
    rankCharacters();
    excludeDigraphs();
}

std::shared_ptr<const LocaleOrder> LocaleOrder::current() {
    struct Made {
        QLocale locale;
        std::shared_ptr<const LocaleOrder> order;
    };
    thread_local Made made;
    if (!made.order || made.locale != QLocale()) {
        made = {QLocale(), std::make_shared<const LocaleOrder>(engine::collator())};
    }
    return made.order;
}

QChar LocaleOrder::rankedCharacter(std::size_t position) {
    return QChar(static_cast<ushort>(position < numAscii ? position : firstCyrillic + position - numAscii));
}

/// Gives ranks to the characters that differ in their first weight, so that no character behind them can turn
/// the order round: "ё" after "е" is no such difference where "её" comes before "ёа".
void LocaleOrder::rankCharacters() {
    std::vector<std::size_t> candidates;
    for (std::size_t position = 0x20; position < numRanked; ++position) {
        if (rankedCharacter(position).isPrint()) {
            candidates.push_back(position);
        }
    }
    const auto text = [](std::size_t position) { return QString(rankedCharacter(position)); };
    std::stable_sort(candidates.begin(), candidates.end(),
                     [&](std::size_t a, std::size_t b) { return collator_.compare(text(a), text(b)) < 0; });
    const QString low = QStringLiteral("0");
    const QString high = QStringLiteral("1");
    QString last;
    std::uint8_t rank = endRank;
    for (const std::size_t candidate : candidates) {
        const QString each = text(candidate);
        const bool isFirst = rank == endRank;
        if (!isFirst && collator_.compare(last, each) == 0) {
            ranks_[candidate] = rank;
        } else if ((isFirst || collator_.compare(last + high, each + low) < 0) && rank + 1 < noRank) {
            ranks_[candidate] = ++rank;
            last = each;
        }
    }
}

/// Letters that a locale orders as one when they stand together (Czech "ch", Danish "aa"), or with a sign
/// behind them (Uzbek "o'"), lose their ranks. Such a pair is out of place among the pairs with the same
/// first letter.
void LocaleOrder::excludeDigraphs() {
    std::vector<std::size_t> letters;
    std::vector<std::size_t> seconds; // one character of each rank, but of the letters the small ones
    for (std::size_t position = 0; position < numRanked; ++position) {
        const QChar character = rankedCharacter(position);
        if (ranks_[position] != noRank && !character.isUpper()) {
            seconds.push_back(position);
        }
    }
    const auto rankOf = [this](std::size_t position) { return ranks_[position]; };
    std::stable_sort(seconds.begin(), seconds.end(),
                     [&](std::size_t a, std::size_t b) { return rankOf(a) < rankOf(b); });
    seconds.erase(std::unique(seconds.begin(), seconds.end(),
                              [&](std::size_t a, std::size_t b) { return rankOf(a) == rankOf(b); }),
                  seconds.end());
    std::copy_if(seconds.begin(), seconds.end(), std::back_inserter(letters),
                 [](std::size_t position) { return rankedCharacter(position).isLetter(); });
    std::array<bool, numRanked> isJoined{};
    for (std::size_t first = 0; first + 1 < letters.size(); ++first) {
        const QChar letter = rankedCharacter(letters[first]);
        const QString after(rankedCharacter(letters[first + 1]));
        QString last(letter);
        for (const std::size_t position : seconds) {
            const QChar second = rankedCharacter(position);
            if (second.isLetter() && second.script() != letter.script()) {
                continue;
            }
            const QString pair = QString(letter) + second;
            if (collator_.compare(last, pair) < 0 && collator_.compare(pair, after) < 0) {
                last = pair;
            } else {
                isJoined[ranks_[letters[first]]] = true;
                isJoined[ranks_[position]] = true;
            }
        }
    }
    for (std::uint8_t& rank : ranks_) {
        rank = rank != noRank && isJoined[rank] ? noRank : rank;
    }
}

inline std::uint8_t LocaleOrder::nextRank(const std::array<std::uint8_t, numRanked>& ranks, const char*& at,
                                          const char* end) {
    if (at == end) {
        return endRank;
    }
    const auto first = static_cast<unsigned char>(*at);
    if (first < numAscii) {
        ++at;
        return ranks[first];
    }
    if (!leadsCyrillic(first) || end - at < 2 || (static_cast<unsigned char>(at[1]) & 0xc0) != 0x80) {
        return noRank;
    }
    const auto second = static_cast<unsigned char>(at[1]);
    at += 2;
    return ranks[numAscii + ((first & 1u) << 6 | (second & 0x3fu))];
}

/// Whether what follows may change the character before it, as a combining mark does. The precomposed Latin
/// letters up to U+024F do not.
bool LocaleOrder::mayJoin(const char* at, const char* end) const {
    const char* next = at;
    const bool isLatinLetter = at != end && *at >= '\xc3' && *at <= '\xc9';
    return !isLatinLetter && nextRank(ranks_, next, end) == noRank;
}

int LocaleOrder::compare(std::string_view a, std::string_view b) const {
    const char* atA = a.data();
    const char* atB = b.data();
    const char* const endA = atA + a.size();
    const char* const endB = atB + b.size();
    if (a == b) {
        return 0; // what rows that are grouped ask most
    }
    // The same plain character in both has the same rank.
    const auto isPlainAscii = [this](char byte) {
        return byte >= 0 && ranks_[static_cast<unsigned char>(byte)] != noRank;
    };
    while (atA != endA && atB != endB && *atA == *atB && isPlainAscii(*atA)) {
        ++atA;
        ++atB;
    }
    std::uint8_t rankA = endRank, rankB = endRank;
    do {
        rankA = nextRank(ranks_, atA, endA);
        rankB = nextRank(ranks_, atB, endB);
        if (rankA == noRank || rankB == noRank) {
            return compareByCollator(a, b);
        }
    } while (rankA == rankB && rankA != endRank);
    if (rankA == rankB) {
        return 0;
    }
    if (mayJoin(atA, endA) || mayJoin(atB, endB)) {
        return compareByCollator(a, b);
    }
    return rankA < rankB ? -1 : 1;
}

int LocaleOrder::compareByCollator(std::string_view a, std::string_view b) const {
    Utf16 left, right;
    toUtf16(a, left);
    toUtf16(b, right);
    constexpr int unit = sizeof(char16_t);
    return collatorCompare(collator_, left.size() * unit, left.constData(), right.size() * unit,
                           right.constData());
}

bool LocaleOrder::appendPlainKey(std::string_view text, std::string& key) const {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        const std::uint8_t rank = nextRank(ranks_, at, end);
        if (rank == noRank) {
            return false;
        }
        key.push_back(static_cast<char>(rank));
    }
    return true;
}

} // namespace orvane::engine
