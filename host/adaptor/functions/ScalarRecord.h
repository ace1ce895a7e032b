#pragma once

#include "host/adaptor/functions/FunctionRecord.h"

#include <algorithm>
#include <initializer_list>

namespace orvane::adaptor {

/// What the reference says of a function.
struct Documentation {
    const char* signature;
    const char* summary;
    const char* example;
    const char* result;
};

/// A scalar function whose value depends only on its arguments.
constexpr FunctionRecord pureFunction(const char* name, const char* group, Arity arity,
                                      FunctionRecord::Scalar function, Documentation text) {
    return {name,    group,   arity,          true,         SQLITE_UTF8,  function,
            nullptr, nullptr, text.signature, text.summary, text.example, text.result};
}

/// One that reads the locale or the clock besides.
constexpr FunctionRecord environmentFunction(const char* name, const char* group, Arity arity,
                                             FunctionRecord::Scalar function, Documentation text) {
    FunctionRecord record = pureFunction(name, group, arity, function, text);
    record.deterministic = false;
    return record;
}

/// One that a library brings along.
constexpr FunctionRecord libraryFunction(const char* name, const char* group, Arity arity,
                                         Documentation text) {
    return pureFunction(name, group, arity, nullptr, text);
}

/// The record of a function that has other names, too.
constexpr FunctionRecord alsoNamed(std::initializer_list<const char*> names, FunctionRecord record) {
    std::copy(names.begin(), names.end(),
              std::find(record.otherNames.begin(), record.otherNames.end(), nullptr));
    return record;
}
constexpr FunctionRecord alsoNamed(const char* name, FunctionRecord record) {
    return alsoNamed({name}, record);
}

/// An aggregate; `Aggregate` has the static functions step and final.
template<typename Aggregate>
constexpr FunctionRecord aggregateFunction(const char* name, const char* group, Arity arity,
                                           Documentation text) {
    return {name,           group,        arity,           true,
            SQLITE_UTF8,    nullptr,      Aggregate::step, Aggregate::final,
            text.signature, text.summary, text.example,    text.result};
}

/// One that may stand before Over; it has inverse and value, too.
template<typename Aggregate>
constexpr FunctionRecord windowFunction(const char* name, const char* group, Arity arity,
                                        Documentation text) {
    FunctionRecord record = aggregateFunction<Aggregate>(name, group, arity, text);
    record.inverse = Aggregate::inverse;
    record.value = Aggregate::value;
    return record;
}

} // namespace orvane::adaptor
