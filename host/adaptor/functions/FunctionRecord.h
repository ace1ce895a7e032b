#pragma once

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <vector>

namespace orvane::adaptor {

/// Numbers of arguments that a function takes. -1 for any number: the function checks it itself.
struct Arity {
    int minimum = 0;
    int maximum = 0;
    static constexpr Arity any() { return {-1, -1}; }
    static constexpr Arity exactly(int count) { return {count, count}; }
    static constexpr Arity between(int minimum, int maximum) { return {minimum, maximum}; }
};

/// One SQL function: what registers it, documents it and tests it. A scalar function sets `scalar`, an
/// aggregate `step` and `final`. Several records may carry one SQL name: other entry points for other
/// arities.
struct FunctionRecord {
    using Scalar = void (*)(sqlite3_context*, int, sqlite3_value**);
    using Final = void (*)(sqlite3_context*);

    const char* name;  ///< SQL name, upper camel case
    const char* group; ///< heading in the reference, e.g. "Text"
    Arity arity;
    bool deterministic; ///< depends on nothing but its arguments
    int encoding;       ///< SQLITE_UTF8 or SQLITE_UTF16: the form in which texts are read
    Scalar scalar;
    Scalar step;
    Final final;
    const char* signature; ///< as the reference shows it, e.g. "Mid(text, start, count)"
    const char* summary;   ///< one sentence
    const char* example;   ///< an expression of the dialect that runs by itself, e.g. "Mid('abcdef', 2, 3)"
    const char* result;    ///< its value as the shell prints it, "NULL" for none; null when it depends on the
                           ///< clock or the locale
    std::array<const char*, 7> otherNames{}; ///< of the same function; null behind the last
    Scalar inverse =
        nullptr; ///< takes a row out of a window; null where the aggregate may not stand before Over
    Final value = nullptr; ///< what is so far in the window; set with `inverse`

    /// False for what a library brings along, which is documented and tested only.
    bool isRegistered() const { return scalar != nullptr || step != nullptr; }
    /// Takes no memory.
    bool isNamed(const char* asked) const {
        return sqlite3_stricmp(name, asked) == 0 ||
               std::any_of(otherNames.begin(), otherNames.end(), [asked](const char* each) {
                   return each != nullptr && sqlite3_stricmp(each, asked) == 0;
               });
    }
    /// The usual one, then the others.
    std::vector<const char*> names() const {
        std::vector<const char*> all{name};
        std::copy_if(otherNames.begin(), otherNames.end(), std::back_inserter(all),
                     [](const char* each) { return each != nullptr; });
        return all;
    }
};

/// The families, each a table in its own file below functions/.
std::span<const FunctionRecord> arithmeticRecords();
std::span<const FunctionRecord> textRecords();
std::span<const FunctionRecord> dateTimeRecords();
std::span<const FunctionRecord> formatRecords();
std::span<const FunctionRecord> geometryRecords();
std::span<const FunctionRecord> measureRecords();
std::span<const FunctionRecord> overlayRecords();
std::span<const FunctionRecord> shapingRecords();
std::span<const FunctionRecord> makingRecords();
std::span<const FunctionRecord> lineRecords();
std::span<const FunctionRecord> constructorRecords();
std::span<const FunctionRecord> accessRecords();
std::span<const FunctionRecord> formRecords();
std::span<const FunctionRecord> editingRecords();
std::span<const FunctionRecord> systemRecords();
std::span<const FunctionRecord> libraryRecords();
std::span<const FunctionRecord> sqliteRecords();

} // namespace orvane::adaptor
