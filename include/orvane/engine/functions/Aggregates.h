#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

/// Aggregates over all values of a group. Rows that do not count (NULL, what is no number where numbers are
/// asked for) are left out; NULL over none. Those with `inverse` may stand before Over. Reentrant.
namespace orvane::engine {

/// The number in the middle of a group; of an even count the mean of the two in the middle. A float.
struct ORVANE_ENGINE_EXPORT Median {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
    static void inverse(sqlite3_context* context, int count, sqlite3_value** values);
    static void value(sqlite3_context* context);
    static void final(sqlite3_context* context);
};

/// `percentile(x, share)`: the number below which the share, 0 to 1, of the group lies: at place share * (n -
/// 1) of the ordered numbers, counted from 0, interpolated between the two next to it. A float. Errors for a
/// share that is out of range, and for one that is not the same in all rows of a group.
struct ORVANE_ENGINE_EXPORT Percentile {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
    static void inverse(sqlite3_context* context, int count, sqlite3_value** values);
    static void value(sqlite3_context* context);
    static void final(sqlite3_context* context);
};

/// `stringAgg(x, separator [, quantifier [, key, direction]...])`: the texts of a group in one. The
/// quantifier "distinct" leaves out repeated ones, compared under Locale. Without keys in the order of the
/// rows, else by the keys as Order By does, each with the words of its direction: "desc", "nulls first",
/// "nulls last", "binary", "nocase". Separator, quantifier and directions are those of the first row.
struct ORVANE_ENGINE_EXPORT StringAgg {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
    static void final(sqlite3_context* context);
};

} // namespace orvane::engine
