#pragma once

#include <sqlite3.h>

#include <memory>
#include <new>

namespace orvane::engine {

// What an aggregate keeps of a group is an object on the heap, to which SQLite keeps the pointer.

/// The object of a step, made by the first.
template<typename Group>
Group& groupOf(sqlite3_context* context) {
    auto** const kept = static_cast<Group**>(sqlite3_aggregate_context(context, sizeof(Group*)));
    if (!kept) {
        throw std::bad_alloc();
    }
    if (!*kept) {
        *kept = new Group();
    }
    return **kept;
}

/// That of a group under way; null when it has no row.
template<typename Group>
Group* currentGroup(sqlite3_context* context) {
    auto** const kept = static_cast<Group**>(sqlite3_aggregate_context(context, 0));
    return kept ? *kept : nullptr;
}

/// That of a group that ends, whether with a result or because the statement was given up.
template<typename Group>
std::unique_ptr<Group> finishedGroup(sqlite3_context* context) {
    return std::unique_ptr<Group>(currentGroup<Group>(context));
}

} // namespace orvane::engine
