#include <orvane/engine/functions/PatternMatch.h>

#include "engine/functions/LetterCase.h"
#include "platform/utils/Utf8.h"

#include <algorithm>
#include <cstring>

namespace orvane::engine {

using utf8::previousCharacter;
using utf8::readCharacter;

bool PatternMatch::Class::contains(char32_t character) const {
    const auto inRanges = [this](char32_t c) {
        return std::any_of(ranges.begin(), ranges.end(),
                           [c](Range range) { return range.first <= c && c <= range.last; });
    };
    if (inRanges(character)) {
        return !negated;
    }
    const char32_t folded = foldCase(character);
    const auto variants = caseVariants(folded);
    const bool found = inRanges(folded) ||
                       std::any_of(variants.begin(), variants.end(),
                                   [&](const CaseVariant& variant) { return inRanges(variant.character); });
    return found != negated;
}

PatternMatch PatternMatch::like(const unsigned char* pattern, char32_t escape) {
    PatternMatch result;
    result.escape_ = escape;
    while (*pattern != 0) {
        const char32_t character = readCharacter(pattern);
        if (escape != 0 && character == escape) {
            if (*pattern == 0) {
                result.matchesNothing_ = true;
                break;
            }
            result.add(foldCase(readCharacter(pattern)));
        } else if (character == '%') {
            result.addRun();
        } else {
            result.add(character == '_' ? anyCharacter : foldCase(character));
        }
    }
    result.prepareSearch();
    return result;
}

PatternMatch PatternMatch::glob(const unsigned char* pattern) {
    PatternMatch result;
    while (*pattern != 0 && !result.matchesNothing_) {
        const char32_t character = readCharacter(pattern);
        switch (character) {
        case '*': result.addRun(); break;
        case '?': result.add(anyCharacter); break;
        case '[': result.readClass(pattern); break;
        default: result.add(foldCase(character));
        }
    }
    result.prepareSearch();
    return result;
}

void PatternMatch::readClass(const unsigned char*& at) {
    Class members;
    if (*at == '^') {
        members.negated = true;
        ++at;
    }
    bool mayStartRange = false;
    for (bool first = true; *at != 0 && (first || *at != ']'); first = false) {
        const bool isClosing = *at == ']'; // the first one of a class is a member, but starts no range
        const char32_t character = readCharacter(at);
        if (character == '-' && mayStartRange && *at != ']' && *at != 0) {
            // Of a range that runs backwards only the first character is a member.
            Range& range = members.ranges.back();
            range.last = std::max(range.first, readCharacter(at));
            mayStartRange = false;
        } else {
            members.ranges.push_back({character, character});
            mayStartRange = !isClosing;
        }
    }
    matchesNothing_ = *at == 0;
    at += matchesNothing_ ? 0 : 1;
    add(firstClass + static_cast<Element>(classes_.size()));
    classes_.push_back(std::move(members));
}

bool PatternMatch::matchesElement(Element element, char32_t character) const {
    if (element < anyCharacter) {
        return element == foldCase(character);
    }
    return element == anyCharacter || classes_[element - firstClass].contains(character);
}

const unsigned char* PatternMatch::matchPiece(const Piece& piece, const unsigned char* at) const {
    for (const Element element : piece.elements) {
        if (*at == 0 || !matchesElement(element, readCharacter(at))) {
            return nullptr;
        }
    }
    return at;
}

const unsigned char* PatternMatch::findPiece(const Piece& piece, const unsigned char* at) const {
    while (true) {
        if (piece.firstByte != 0) {
            // A byte below 0x80 is a character wherever it stands.
            while (*at != 0 && *at != piece.firstByte && *at != piece.otherFirstByte) {
                ++at;
            }
        }
        if (const unsigned char* end = matchPiece(piece, at); end != nullptr) {
            return end;
        }
        if (*at == 0) {
            return nullptr;
        }
        readCharacter(at);
    }
}

void PatternMatch::prepareSearch() {
    for (Piece& piece : pieces_) {
        const Element first = piece.elements.empty() ? anyCharacter : piece.elements.front();
        // The letters k and s have a third form outside ASCII.
        if (first < 0x80 && first != 'k' && first != 's') {
            piece.firstByte = static_cast<unsigned char>(first);
            piece.otherFirstByte =
                static_cast<unsigned char>(first >= 'a' && first <= 'z' ? first - 0x20 : first);
        }
    }
}

bool PatternMatch::matches(const unsigned char* text) const {
    if (matchesNothing_) {
        return false;
    }
    const unsigned char* at = matchPiece(pieces_.front(), text);
    if (at == nullptr || pieces_.size() == 1) {
        return at != nullptr && *at == 0;
    }
    // Each piece matches a fixed number of characters: its first place leaves the most for the pieces behind
    // it.
    for (size_t i = 1; i + 1 < pieces_.size(); ++i) {
        at = findPiece(pieces_[i], at);
        if (at == nullptr) {
            return false;
        }
    }
    const Piece& last = pieces_.back();
    const unsigned char* tail = at + std::strlen(reinterpret_cast<const char*>(at));
    for (size_t i = 0; i < last.elements.size(); ++i) {
        if (tail == at) {
            return false;
        }
        tail = previousCharacter(at, tail);
    }
    return matchPiece(last, tail) != nullptr;
}

} // namespace orvane::engine
