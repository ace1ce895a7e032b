#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/Aggregates.h>
#include <orvane/engine/functions/Arithmetic.h>

namespace orvane::adaptor {

namespace {

constexpr const char* operators = "Operators";
constexpr const char* arithmetic = "Arithmetic";
constexpr const char* aggregates = "Aggregates";

const FunctionRecord records[] = {
    pureFunction("concat", operators, Arity::exactly(2), engine::concatUTF16,
                 {"a + b", "The sum of two numbers; texts, and a text and a number, are joined.",
                  "concat('No. ', 7)", "No. 7"}),
    pureFunction("divide", operators, Arity::exactly(2), engine::divide,
                 {"a / b", "The quotient of two numbers, with its fraction; an error for a division by zero.",
                  "divide(7, 2)", "3.5"}),
    pureFunction("quotient", operators, Arity::exactly(2), engine::quotient,
                 {"a \\ b",
                  "The whole quotient: integers truncate towards zero, floating-point numbers go down.",
                  "quotient(-7, 2)", "-3"}),
    pureFunction("involution", operators, Arity::exactly(2), engine::power,
                 {"x ^ y", "x to the power of y.", "involution(2, 10)", "1024"}),
    pureFunction("xor", operators, Arity::exactly(2), engine::xorLogical,
                 {"a Xor b", "1 when exactly one of the two is true (not zero), else 0.", "1 Xor 0", "1"}),
    pureFunction("Power", arithmetic, Arity::exactly(2), engine::power,
                 {"Power(x, y)", "x to the power of y.", "Power(9, 0.5)", "3"}),
    pureFunction("Minimum", arithmetic, Arity::exactly(2), engine::minimum,
                 {"Minimum(a, b)", "The smaller of two numbers; NULL if either is no number.",
                  "Minimum(3, 2.5)", "2.5"}),
    pureFunction(
        "Maximum", arithmetic, Arity::exactly(2), engine::maximum,
        {"Maximum(a, b)", "The larger of two numbers; NULL if either is no number.", "Maximum(3, 2.5)", "3"}),
    environmentFunction(
        "Greatest", arithmetic, Arity::any(), engine::greatest,
        {"Greatest(x, y, ...)",
         "The greatest of several values in the order of Order By. NULLs are left out: only where all "
         "are NULL the answer is. (Max of several values is NULL where one is.)",
         "Greatest(2, NULL, 10.5)", "10.5"}),
    environmentFunction("Least", arithmetic, Arity::any(), engine::least,
                        {"Least(x, y, ...)", "The least of several values likewise; NULLs are left out.",
                         "Least('b', NULL, 'A')", "A"}),
    pureFunction(
        "Sign", arithmetic, Arity::exactly(1), engine::sign,
        {"Sign(x)", "-1 for a negative number, 0 for zero, 1 for a positive one.", "Sign(-2.5)", "-1"}),
    pureFunction("Truncate", arithmetic, Arity::exactly(1), engine::truncate,
                 {"Truncate(x)", "The number without its fraction, as an integer.", "Truncate(-2.7)", "-2"}),
    pureFunction(
        "Floor", arithmetic, Arity::exactly(1), engine::floor,
        {"Floor(x)", "The largest integer that is not greater than the number.", "Floor(-2.5)", "-3"}),
    pureFunction("Sqrt", arithmetic, Arity::exactly(1), engine::sqrt,
                 {"Sqrt(x)",
                  "The square root; an error for a negative number and for anything that is no number, NULL "
                  "included.",
                  "Sqrt(2.25)", "1.5"}),
    pureFunction(
        "RoundTo", arithmetic, Arity::between(1, 2), engine::roundTo,
        {"Round(x [, step])",
         "The multiple of the step that is nearest to the number; step 0, or none, rounds to whole numbers.",
         "RoundTo(17, 5)", "15"}),
    pureFunction(
        "RoundBy", arithmetic, Arity::between(1, 2), engine::roundBy,
        {"RoundBy(x [, digits])",
         "The number rounded to decimal places (tens, hundreds, ... for negative ones), halves away from "
         "zero.",
         "RoundBy(1.005, 2)", "1.01"}),
    aggregateFunction<engine::WtAvg>(
        "WtAvg", aggregates, Arity::exactly(2),
        {"WtAvg(value, weight)", "The average of the values with their weights.",
         "(Select WtAvg(v, w) From (Select 10 As v, 1 As w Union All Select 20, 3) t)", "17.5"}),
    aggregateFunction<engine::WtAvgSafe>(
        "WtAvgSafe", aggregates, Arity::exactly(2),
        {"WtAvgSafe(value, weight)",
         "The same as WtAvg without a large intermediate sum; an error once the weights add up to zero.",
         "(Select WtAvgSafe(v, w) From (Select 10 As v, 1 As w Union All Select 20, 3) t)", "17.5"}),
    windowFunction<engine::Median>(
        "Median", aggregates, Arity::exactly(1),
        {"Median(x)",
         "The number in the middle of a group, the mean of two where there is none; rows that are NULL or no "
         "number "
         "are left out. May stand before Over.",
         "(Select Median(x) From (Select 1 As x Union All Select 2 Union All Select 7) t)", "2"}),
    windowFunction<engine::Percentile>(
        "Percentile", aggregates, Arity::exactly(2),
        {"Percentile(x, share)",
         "The number below which a share of a group lies, 0.9 for nine tenths, interpolated between the two "
         "next to "
         "it; rows that are NULL or no number are left out. May stand before Over.",
         "(Select Percentile(x, 0.75) From (Select 1 As x Union All Select 2) t)", "1.75"}),
    aggregateFunction<engine::StringAgg>(
        "String_Agg", aggregates, Arity::any(),
        {"String_Agg([Distinct] x, separator [Order By y, ...])",
         "The texts of a group in one, in an order; rows that are NULL are left out.",
         "(Select String_Agg(x, '; ' Order By x Desc) From (Select 'a' As x Union All Select 'b') t)",
         "b; a"}),
};

} // namespace

std::span<const FunctionRecord> arithmeticRecords() {
    return records;
}

} // namespace orvane::adaptor
