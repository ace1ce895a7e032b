#pragma once

#include "platform/Export.h"

#include <string>
#include <string_view>

namespace orvane::sql {

/// The words that the grammar knows, in alphabetical order of their spellings.
enum class Keyword : unsigned char {
    None,
    All,
    And,
    As,
    Asc,
    Between,
    By,
    Case,
    Cast,
    Collate,
    Contains,
    Cross,
    Current,
    Date,
    Default,
    Delete,
    Desc,
    Distinct,
    Else,
    End,
    Entire,
    Entirely,
    Escape,
    Except,
    Exclude,
    Exists,
    False,
    Fetch,
    Filter,
    First,
    Following,
    From,
    Full,
    Glob,
    Group,
    Groups,
    Having,
    ILike,
    In,
    Inner,
    Insert,
    Intersect,
    Intersects,
    Into,
    Is,
    Join,
    Last,
    Left,
    Like,
    Limit,
    Materialized,
    Mod,
    Natural,
    Next,
    No,
    Not,
    Null,
    Nulls,
    Offset,
    On,
    Only,
    Or,
    Order,
    Others,
    Outer,
    Over,
    Part,
    Partition,
    Partly,
    Preceding,
    Range,
    Recursive,
    RegExp,
    Right,
    Row,
    Rows,
    Select,
    Set,
    Table,
    Then,
    Ties,
    Time,
    Timestamp,
    True,
    Unbounded,
    Union,
    Unknown,
    Update,
    Using,
    Values,
    When,
    Where,
    With,
    Within,
    Xor
};

constexpr int keywordCount = 95;

/// The keyword that a bare word is, letter case ignored; None when it is a plain name.
ORVANE_PLATFORM_EXPORT Keyword findKeyword(std::wstring_view word);
/// As this dialect prints it, for example "Select".
ORVANE_PLATFORM_EXPORT std::wstring_view spelling(Keyword keyword);
/// Whether the word cannot be a name unless it is quoted. The other keywords are names wherever the grammar
/// allows both.
ORVANE_PLATFORM_EXPORT bool isReserved(Keyword keyword);
/// Whether the word, reserved as it is, names a function when "(" follows where a value is expected.
ORVANE_PLATFORM_EXPORT bool isFunctionWord(Keyword keyword);
/// Whether a bare name stands for a call without parentheses: rownum, Current_Date, Current_Time and
/// Current_Timestamp, in any letter case.
ORVANE_PLATFORM_EXPORT bool isBareFunction(const std::wstring& name);

/// How many single-letter changes (insert, drop, replace, swap of neighbours) lead from one word to the
/// other, letter case ignored; any number above `limit` when more than `limit` are needed.
ORVANE_PLATFORM_EXPORT int editDistance(std::wstring_view a, std::wstring_view b, int limit);

} // namespace orvane::sql
