#pragma once

#include <orvane/engine/Export.h>

#include <vector>

namespace orvane::engine {

/// A LIKE or glob pattern, read once and matched on UTF-8 texts without regard to case: "%" and "*" are any
/// run, "_" and "?" one character, "[abc]", "[a-z]", "[^a-z]" one character of a class (or not of it). A "]"
/// that comes first in a class belongs to it; a class that is not closed matches nothing, and so does an
/// escape at the end. Bytes that are no UTF-8 are U+FFFD. A match takes at most the length of the text times
/// that of the pattern and no memory. Immutable: any thread may match.
class ORVANE_ENGINE_EXPORT PatternMatch {
public:
    /// Zero-terminated UTF-8. `escape` is the character that makes the next one literal, 0 for none.
    static PatternMatch like(const unsigned char* pattern, char32_t escape);
    static PatternMatch glob(const unsigned char* pattern);

    /// Whether the whole zero-terminated text matches.
    bool matches(const unsigned char* text) const;
    char32_t escape() const { return escape_; }

private:
    struct Range {
        char32_t first;
        char32_t last;
    };
    /// Characters of a class, whatever their case, or all others.
    struct Class {
        std::vector<Range> ranges;
        bool negated = false;
        bool contains(char32_t character) const;
    };
    /// One character of the text: a case-folded character, any one, or one of a class (a number counted up
    /// from the first one that is no character).
    using Element = char32_t;
    static constexpr Element anyCharacter = 0x110000;
    static constexpr Element firstClass = 0x110001;

    /// What stands between two runs.
    struct Piece {
        std::vector<Element> elements;
        /// The two bytes that its first character may be, where it is one of ASCII; 0 otherwise.
        unsigned char firstByte = 0;
        unsigned char otherFirstByte = 0;
    };

    void add(Element element) { pieces_.back().elements.push_back(element); }
    void addRun() { pieces_.emplace_back(); }
    void prepareSearch();
    void readClass(const unsigned char*& at);
    bool matchesElement(Element element, char32_t character) const;
    /// The end of the piece when it stands at `at`, else null.
    const unsigned char* matchPiece(const Piece& piece, const unsigned char* at) const;
    const unsigned char* findPiece(const Piece& piece, const unsigned char* at) const;

    std::vector<Piece> pieces_ = std::vector<Piece>(1);
    std::vector<Class> classes_;
    char32_t escape_ = 0;
    bool matchesNothing_ = false;
};

} // namespace orvane::engine
