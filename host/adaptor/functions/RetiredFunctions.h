#pragma once

#include <sqlite3.h>

#include <span>
#include <string>

namespace orvane::adaptor {

/// A function that the dialect names and nobody should call any more.
struct RetiredFunction {
    const char* name;
    const char* instead; ///< what does the same now, as an error says it; null for nothing
};

std::span<const RetiredFunction> retiredFunctions();
/// What the error of a call says.
std::string refusal(const RetiredFunction& function);

/// Makes the calls of a retired function with a number of arguments, -1 for any, errors that say what to use
/// instead. Returns SQLite's code.
int registerRetiredFunction(sqlite3* database, const RetiredFunction& function, int count);

} // namespace orvane::adaptor
