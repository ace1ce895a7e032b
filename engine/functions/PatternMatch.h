#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

#include <cstdint>
#include <vector>

namespace orvane::engine {

/// A LIKE or glob pattern, read once and matched on UTF-8 texts without regard to case. Answers as the
/// engine's entry points for these operators do with their regular expressions. A match takes at most the
/// length of the text times that of the pattern and no memory. Immutable: any thread may match.
class ORVANE_ENGINE_EXPORT PatternMatch {
public:
    /// Zero-terminated UTF-8. `escape` is the character that makes the next one literal, 0 for none.
    static PatternMatch like(const unsigned char* pattern, std::uint32_t escape);
    static PatternMatch glob(const unsigned char* pattern);

    /// Whether the whole zero-terminated text matches.
    bool matches(const unsigned char* text) const;
    std::uint32_t escape() const { return escape_; }

private:
    struct Range {
        std::uint32_t first;
        std::uint32_t last;
    };
    /// Characters of a class, whatever their case, or all others.
    struct Class {
        std::vector<Range> ranges;
        bool negated = false;
        bool contains(std::uint32_t character) const;
    };
    /// One character of the text: a case-folded character, any one, or one of a class (a number counted up
    /// from the first one that is no character).
    using Element = std::uint32_t;
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
    bool matchesElement(Element element, std::uint32_t character) const;
    /// The end of the piece when it stands at `at`, else null.
    const unsigned char* matchPiece(const Piece& piece, const unsigned char* at) const;
    const unsigned char* findPiece(const Piece& piece, const unsigned char* at) const;

    std::vector<Piece> pieces_ = std::vector<Piece>(1);
    std::vector<Class> classes_;
    std::uint32_t escape_ = 0;
    bool matchesNothing_ = false;
};

/// `like(pattern, text [, escape])` and `glob(pattern, text)` for the engine database and the index stores. A
/// pattern that is constant in a statement is read once per statement. An escape of more than one
/// character is an error; NULL and an empty text are none.
ORVANE_ENGINE_EXPORT void likePattern(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void globPattern(sqlite3_context* context, int count, sqlite3_value** values);

} // namespace orvane::engine
