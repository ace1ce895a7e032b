#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

/// The numeric operators and functions of the dialect. Arguments are read with toDouble and toInt64: where
/// one does not convert (NULL, a blob, a text that begins with no number) the result is NULL, unless stated
/// otherwise. Reentrant.
namespace orvane::engine {

/// `a + b`. Integers add to an integer, or to a float where the sum does not fit; numbers with a float among
/// them to a float ("Sum overflow." where it is not finite); anything else is joined as text. NULL if either
/// is NULL.
ORVANE_ENGINE_EXPORT void concatUTF16(sqlite3_context* context, int count, sqlite3_value** values);
/// `a / b` in floating point; "Division by zero" where the quotient is not finite.
ORVANE_ENGINE_EXPORT void divide(sqlite3_context* context, int count, sqlite3_value** values);
/// `a \ b`: integers truncate towards zero, anything else takes the floor of the floating-point quotient.
/// "Division by zero" for no finite quotient, "Integer overflow" for one outside 64 bits.
ORVANE_ENGINE_EXPORT void quotient(sqlite3_context* context, int count, sqlite3_value** values);
/// `x ^ y`; "Power overflow" where the result is not finite.
ORVANE_ENGINE_EXPORT void power(sqlite3_context* context, int count, sqlite3_value** values);
/// 1 when exactly one of the arguments is not zero, else 0; a not-a-number is not zero.
ORVANE_ENGINE_EXPORT void xorLogical(sqlite3_context* context, int count, sqlite3_value** values);

/// The smaller (larger) of two numbers, a float. The first one where neither is smaller (larger).
ORVANE_ENGINE_EXPORT void minimum(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void maximum(sqlite3_context* context, int count, sqlite3_value** values);
/// The greatest (least) of any number of values in the order of Order By: numbers, texts under Locale, bytes.
/// NULLs are left out; NULL where there is nothing else. An error without arguments.
ORVANE_ENGINE_EXPORT void greatest(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void least(sqlite3_context* context, int count, sqlite3_value** values);
/// -1, 0 or 1.
ORVANE_ENGINE_EXPORT void sign(sqlite3_context* context, int count, sqlite3_value** values);
/// The integer towards zero; of a text its leading digits.
ORVANE_ENGINE_EXPORT void truncate(sqlite3_context* context, int count, sqlite3_value** values);
/// The largest integer that is not greater. A float outside 64 bits gives the smallest or largest 64-bit
/// integer, a not-a-number NULL.
ORVANE_ENGINE_EXPORT void floor(sqlite3_context* context, int count, sqlite3_value** values);
/// "Square root from negative value" for every argument that is no number from 0 up, NULL included.
ORVANE_ENGINE_EXPORT void sqrt(sqlite3_context* context, int count, sqlite3_value** values);
/// The multiple of the second argument that is nearest to the first, halves away from zero; step 0, or no
/// second argument, stands for 1.
ORVANE_ENGINE_EXPORT void roundTo(sqlite3_context* context, int count, sqlite3_value** values);
/// utils::getRound to the decimal places of the second argument, 0 when there is none.
ORVANE_ENGINE_EXPORT void roundBy(sqlite3_context* context, int count, sqlite3_value** values);

/// The average of values (first argument) with weights (second): weighted sum by sum of weights. Rows in
/// which either does not convert are left out. NULL over no rows; "Division by zero" when the weights add up
/// to zero.
struct ORVANE_ENGINE_EXPORT WtAvg {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
    static void final(sqlite3_context* context);
};

/// The same as a running mean, which needs no large sum. Weights that add up to zero after any row are
/// "Division by zero", whatever follows.
struct ORVANE_ENGINE_EXPORT WtAvgSafe {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
    static void final(sqlite3_context* context);
};

} // namespace orvane::engine
