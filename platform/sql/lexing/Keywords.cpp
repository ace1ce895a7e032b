#include "platform/sql/lexing/Keywords.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace orvane::sql {

namespace {

enum Class : unsigned char { Free, Reserved, ReservedButCallable };

struct Entry {
    std::wstring_view spelling;
    Class wordClass;
};

// In the order of the enumeration, which is alphabetical: lookups search it by halves.
constexpr std::array<Entry, keywordCount> entries{{{L"", Free},
                                                   {L"All", Reserved},
                                                   {L"And", Reserved},
                                                   {L"As", Reserved},
                                                   {L"Asc", Free},
                                                   {L"Between", Reserved},
                                                   {L"By", Free},
                                                   {L"Case", Reserved},
                                                   {L"Cast", Reserved},
                                                   {L"Collate", Reserved},
                                                   {L"Contains", ReservedButCallable},
                                                   {L"Cross", Reserved},
                                                   {L"Current", Free},
                                                   {L"Date", Free},
                                                   {L"Default", Free},
                                                   {L"Delete", Free},
                                                   {L"Desc", Free},
                                                   {L"Distinct", Reserved},
                                                   {L"Else", Reserved},
                                                   {L"End", Reserved},
                                                   {L"Entire", Free},
                                                   {L"Entirely", Free},
                                                   {L"Escape", Free},
                                                   {L"Except", Reserved},
                                                   {L"Exclude", Free},
                                                   {L"Exists", Reserved},
                                                   {L"False", Reserved},
                                                   {L"Fetch", Reserved},
                                                   {L"Filter", Free},
                                                   {L"First", Free},
                                                   {L"Following", Free},
                                                   {L"From", Reserved},
                                                   {L"Full", Reserved},
                                                   {L"Glob", ReservedButCallable},
                                                   {L"Group", Reserved},
                                                   {L"Groups", Free},
                                                   {L"Having", Reserved},
                                                   {L"ILike", ReservedButCallable},
                                                   {L"In", Reserved},
                                                   {L"Inner", Reserved},
                                                   {L"Insert", Free},
                                                   {L"Intersect", Reserved},
                                                   {L"Intersects", ReservedButCallable},
                                                   {L"Into", Reserved},
                                                   {L"Is", Reserved},
                                                   {L"Join", Reserved},
                                                   {L"Last", Free},
                                                   {L"Left", ReservedButCallable},
                                                   {L"Like", ReservedButCallable},
                                                   {L"Limit", Reserved},
                                                   {L"Materialized", Free},
                                                   {L"Mod", ReservedButCallable},
                                                   {L"Natural", Reserved},
                                                   {L"Next", Free},
                                                   {L"No", Free},
                                                   {L"Not", Reserved},
                                                   {L"Null", Reserved},
                                                   {L"Nulls", Free},
                                                   {L"Offset", Reserved},
                                                   {L"On", Reserved},
                                                   {L"Only", Free},
                                                   {L"Or", Reserved},
                                                   {L"Order", Reserved},
                                                   {L"Others", Free},
                                                   {L"Outer", Free},
                                                   {L"Over", Free},
                                                   {L"Part", Free},
                                                   {L"Partition", Free},
                                                   {L"Partly", Free},
                                                   {L"Preceding", Free},
                                                   {L"Range", Free},
                                                   {L"Recursive", Free},
                                                   {L"RegExp", ReservedButCallable},
                                                   {L"Right", ReservedButCallable},
                                                   {L"Row", Free},
                                                   {L"Rows", Free},
                                                   {L"Select", Reserved},
                                                   {L"Set", Reserved},
                                                   {L"Table", Free},
                                                   {L"Then", Reserved},
                                                   {L"Ties", Free},
                                                   {L"Time", Free},
                                                   {L"Timestamp", Free},
                                                   {L"True", Reserved},
                                                   {L"Unbounded", Free},
                                                   {L"Union", Reserved},
                                                   {L"Unknown", Reserved},
                                                   {L"Update", Free},
                                                   {L"Using", Reserved},
                                                   {L"Values", Free},
                                                   {L"When", Reserved},
                                                   {L"Where", Reserved},
                                                   {L"With", Free},
                                                   {L"Within", ReservedButCallable},
                                                   {L"Xor", ReservedButCallable}}};

constexpr wchar_t lower(wchar_t symbol) {
    return symbol >= L'A' && symbol <= L'Z' ? static_cast<wchar_t>(symbol + (L'a' - L'A')) : symbol;
}

constexpr int compareFolded(std::wstring_view a, std::wstring_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return lower(a[i]) < lower(b[i]) ? -1 : 1;
        }
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

constexpr std::size_t longestKeyword = std::max_element(entries.begin(), entries.end(), [](auto& a, auto& b) {
                                           return a.spelling.size() < b.spelling.size();
                                       }) -> spelling.size();

static_assert(std::is_sorted(entries.begin(), entries.end(),
                             [](auto& a, auto& b) { return compareFolded(a.spelling, b.spelling) < 0; }));

constexpr std::size_t letterCount = 'z' - 'a' + 1;

/// Where the keywords of each letter begin, and behind the last letter their end.
constexpr auto beginOfLetter = [] {
    std::array<std::size_t, letterCount + 1> begins{};
    for (std::size_t letter = 0; letter <= letterCount; ++letter) {
        std::size_t& begin = begins[letter];
        for (begin = 1; begin < entries.size() &&
                        lower(entries[begin].spelling.front()) < static_cast<wchar_t>(L'a' + letter);) {
            ++begin;
        }
    }
    return begins;
}();

} // namespace

Keyword findKeyword(std::wstring_view word) {
    if (word.size() < 2 || word.size() > longestKeyword) {
        return Keyword::None;
    }
    const auto letter = static_cast<std::size_t>(lower(word.front()) - L'a'); // wraps for what comes before
    if (letter >= letterCount) {
        return Keyword::None;
    }
    const auto* const begin = entries.data() + beginOfLetter[letter];
    const auto* const end = entries.data() + beginOfLetter[letter + 1];
    const auto* const found =
        std::lower_bound(begin, end, word, [](const Entry& entry, std::wstring_view key) {
            return compareFolded(entry.spelling, key) < 0;
        });
    return found != end && compareFolded(found->spelling, word) == 0
               ? static_cast<Keyword>(found - entries.data())
               : Keyword::None;
}

std::wstring_view spelling(Keyword keyword) {
    return entries[static_cast<std::size_t>(keyword)].spelling;
}

bool isReserved(Keyword keyword) {
    return entries[static_cast<std::size_t>(keyword)].wordClass != Free;
}

bool isFunctionWord(Keyword keyword) {
    return entries[static_cast<std::size_t>(keyword)].wordClass == ReservedButCallable;
}

bool isBareFunction(const std::wstring& name) {
    const std::wstring lowercase = toLowercase(name);
    return lowercase == L"rownum" || lowercase == L"current_date" || lowercase == L"current_time" ||
           lowercase == L"current_timestamp";
}

int editDistance(std::wstring_view a, std::wstring_view b, int limit) {
    constexpr std::size_t longest = 64;
    if (a.size() > longest || b.size() > longest ||
        std::abs(static_cast<int>(a.size()) - static_cast<int>(b.size())) > limit) {
        return limit + 1;
    }
    // Rows of the optimal string alignment table: two before the present one.
    std::array<std::array<int, longest + 1>, 3> rows{};
    for (std::size_t j = 0; j <= b.size(); ++j) {
        rows[0][j] = static_cast<int>(j);
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        auto& row = rows[i % 3];
        const auto& above = rows[(i + 2) % 3];
        const auto& twoAbove = rows[(i + 1) % 3];
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1])) {
                row[j] = std::min(row[j], twoAbove[j - 2] + 1);
            }
        }
    }
    return rows[a.size() % 3][b.size()];
}

} // namespace orvane::sql
