#include "engine/indices/PatternRange.h"

#include "engine/functions/LetterCase.h"
#include "platform/utils/Utf8.h"
#include <orvane/engine/EngineIndices.h>

#include <QString>

#include <algorithm>
#include <map>
#include <utility>

namespace orvane::engine {

namespace {

std::string toUtf8(char32_t character) {
    std::string text;
    utf8::append(text, character);
    return text;
}

/// The text before the first wildcard.
std::string literalPrefix(std::string_view pattern, quint8 operation) {
    using namespace std::string_view_literals;
    const std::string_view ends = operation == EngineIndices::Like ? "%_\0"sv : "*?[\0"sv;
    return std::string(pattern.substr(0, pattern.find_first_of(ends)));
}

/// Every form that a pattern takes for the character.
std::vector<char32_t> formsOf(char32_t character) {
    const char32_t folded = foldCase(character);
    std::vector<char32_t> forms{folded};
    for (const CaseVariant& variant : caseVariants(folded)) {
        forms.push_back(variant.character);
    }
    return forms;
}

/// What locales join with a Latin or Cyrillic letter before it: combining marks, modifier letters and
/// apostrophes. Letters are LocaleOrder's concern: those that join are not plain.
const std::vector<std::string>& joiners() {
    static const std::vector<std::string> texts = [] {
        constexpr std::pair<char32_t, char32_t> blocks[] = {
            {0x20, 0x40},     {0x5b, 0x60},     {0x7b, 0x7e},     {0xa0, 0xbf},     {0x2b0, 0x36f},
            {0x483, 0x487},   {0x1ab0, 0x1ace}, {0x1dc0, 0x1dff}, {0x2010, 0x2027}, {0x20d0, 0x20f0},
            {0x2de0, 0x2dff}, {0xa66f, 0xa67d}, {0xfe20, 0xfe2f}};
        std::vector<std::string> result;
        for (const auto& [first, last] : blocks) {
            for (char32_t character = first; character <= last; ++character) {
                result.push_back(toUtf8(character));
            }
        }
        return result;
    }();
    return texts;
}

} // namespace

PatternRanges::PatternRanges(std::shared_ptr<const LocaleOrder> order) : order_(std::move(order)) {
    std::map<std::string, std::string> plain; // by key, which is as long as all others
    constexpr std::pair<char32_t, char32_t> ranked[] = {{0x20, 0x7e}, {0x400, 0x47f}};
    for (const auto& [first, last] : ranked) {
        for (char32_t character = first; character <= last; ++character) {
            std::string text = toUtf8(character);
            std::string key;
            if (order_->plainKey(text, key)) {
                plain.emplace(std::move(key), std::move(text));
            }
        }
    }
    for (auto& [key, text] : plain) {
        plainPlaces_.emplace(key, alphabet_.size());
        alphabet_.push_back(std::move(text));
    }
    appendLetterBehind();
}

/// Gives what begins with the last plain letter a bound, from the script that comes next.
void PatternRanges::appendLetterBehind() {
    constexpr char32_t firstLetters[] = {0x3b1, 0x10d0, 0x5d0, 0x4e00}; // Greek, Georgian, Hebrew, Han
    std::string next;
    for (const char32_t letter : firstLetters) {
        std::string text = toUtf8(letter);
        const bool isBehind = !alphabet_.empty() && order_->compare(alphabet_.back() + '1', text + '0') < 0;
        if (isBehind && (next.empty() || order_->compare(text, next) < 0)) {
            next = std::move(text);
        }
    }
    if (!next.empty()) {
        alphabet_.push_back(std::move(next));
    }
}

std::optional<PatternRanges::Place> PatternRanges::plainPlace(const std::string& character) const {
    std::string key;
    const auto place = order_->plainKey(character, key) ? plainPlaces_.find(key) : plainPlaces_.end();
    return place == plainPlaces_.end() ? std::nullopt : std::optional(place->second);
}

/// Whether two characters differ in accents or case at most, so that what follows them decides first.
bool PatternRanges::sharePlace(const std::string& a, const std::string& b) const {
    return order_->compare(a + '0', b + '1') < 0 && order_->compare(b + '0', a + '1') < 0;
}

/// The place of a plain character, or that of the letter to which the marks of the character are but accents.
std::optional<PatternRanges::Place> PatternRanges::placeOf(char32_t character) const {
    const std::string text = toUtf8(character);
    if (const auto place = plainPlace(text)) {
        return place;
    }
    const QString parts = QString::fromStdString(text).normalized(QString::NormalizationForm_D);
    const auto place = plainPlace(parts.left(1).toStdString());
    return place && sharePlace(text, alphabet_[*place]) ? place : std::nullopt;
}

PatternRanges::Letter& PatternRanges::letter(char32_t character) {
    const auto [entry, isNew] = letters_.try_emplace(character);
    Letter& letter = entry->second;
    if (isNew) {
        const auto forms = formsOf(character);
        const auto place = placeOf(character);
        const bool isOne = place && std::all_of(forms.begin(), forms.end(), [&](char32_t form) {
                               return sharePlace(toUtf8(form), alphabet_[*place]);
                           });
        letter.place = isOne ? place : std::nullopt;
    }
    return letter;
}

/// Of a letter that has a place.
const PatternRanges::Ending& PatternRanges::ending(char32_t character) {
    Letter& asked = letter(character);
    if (asked.ending) {
        return *asked.ending;
    }
    const Place place = *asked.place;
    Ending found{true, place + 1};
    for (const char32_t form : formsOf(character)) {
        for (const std::string& joiner : joiners()) {
            const std::string joined = toUtf8(form) + joiner;
            found.isLowest = found.isLowest && order_->compare(joined, alphabet_[place]) >= 0;
            while (found.after < alphabet_.size() &&
                   order_->compare(joined + '1', alphabet_[found.after] + '0') >= 0) {
                ++found.after;
            }
        }
    }
    return asked.ending.emplace(found);
}

PatternRange PatternRanges::find(std::string_view pattern, quint8 operation) {
    if (operation != EngineIndices::Like && operation != EngineIndices::Glob) {
        return {};
    }
    const std::string prefix = literalPrefix(pattern, operation);
    std::vector<char32_t> letters;
    for (std::size_t at = 0; at < prefix.size();) {
        const char32_t character = utf8::nextCharacter(prefix, at);
        if (!letter(character).place) {
            break;
        }
        letters.push_back(character);
    }
    while (!letters.empty() && !ending(letters.back()).isLowest) {
        letters.pop_back();
    }
    PatternRange range;
    std::vector<std::size_t> ends; // of the bounds' common part, before each letter
    for (const char32_t character : letters) {
        ends.push_back(range.lower.size());
        range.lower += alphabet_[*letter(character).place];
    }
    for (std::size_t i = letters.size(); i-- > 0 && range.upper.empty();) {
        if (const Place after = ending(letters[i]).after; after < alphabet_.size()) {
            range.upper = range.lower.substr(0, ends[i]) + alphabet_[after];
        }
    }
    return range;
}

} // namespace orvane::engine
