#pragma once

#include <orvane/engine/LocaleOrder.h>

#include <QtGlobal>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane::engine {

/// The texts that a Like or Glob pattern can match lie, in the order of a collator, from `lower` (inclusive)
/// to `upper` (exclusive). UTF-8; an empty text means that there is no such bound.
struct PatternRange {
    std::string lower;
    std::string upper;
};

/// Finds the ranges of patterns from the letters with which they begin. Patterns fold letter case one
/// character for one, collators order by alphabets, join letters and give marks a weight, so a range is given
/// as far as both agree: as long as every form of a letter that the pattern takes for it stands in one place
/// of the alphabet. These are the plain characters of LocaleOrder and accented letters that are ordered with
/// them; of the last one it is asked what a mark behind it makes of it ("a" and a ring are the Swedish letter
/// after "z"). Not for use from two threads at once.
class PatternRanges {
public:
    explicit PatternRanges(std::shared_ptr<const LocaleOrder> order);

    /// A zero byte ends the pattern. Any operation but Like and Glob has no bounds.
    PatternRange find(std::string_view pattern, quint8 operation);

private:
    /// A place in alphabet_.
    using Place = std::size_t;

    /// What becomes of a letter when anything may follow it.
    struct Ending {
        bool isLowest; ///< nothing that begins with the letter comes before it
        Place after;   ///< comes after all that begins with the letter; the end where nothing is known to
    };
    struct Letter {
        std::optional<Place> place;   ///< of all its forms; none where they have several or another
        std::optional<Ending> ending; ///< once it was asked for
    };

    void appendLetterBehind();
    Letter& letter(char32_t character);
    const Ending& ending(char32_t character);
    std::optional<Place> placeOf(char32_t character) const;
    std::optional<Place> plainPlace(const std::string& character) const;
    bool sharePlace(const std::string& a, const std::string& b) const;

    std::shared_ptr<const LocaleOrder> order_;
    std::vector<std::string> alphabet_;                  ///< one plain character of each rank, in order, and
                                                         ///< a letter behind them
    std::unordered_map<std::string, Place> plainPlaces_; ///< by LocaleOrder's key of a plain character
    std::unordered_map<char32_t, Letter> letters_;       ///< those that have occurred
};

} // namespace orvane::engine
