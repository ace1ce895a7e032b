#pragma once

#include <sqlite3.h>

#include <memory>
#include <new>
#include <utility>

namespace orvane::engine {

/// Calls `use` with what `make` reads out of an argument of an SQL function. Where the argument is constant
/// in the statement SQLite keeps the object for the next rows, as long as `isCurrent` says of it that it
/// still serves.
template<typename Prepared, typename IsCurrent, typename Make, typename Use>
void withPrepared(sqlite3_context* context, int argument, IsCurrent isCurrent, Make make, Use use) {
    if (const auto* kept = static_cast<const Prepared*>(sqlite3_get_auxdata(context, argument));
        kept != nullptr && isCurrent(*kept)) {
        use(*kept);
        return;
    }
    auto made = std::make_unique<Prepared>(make());
    use(std::as_const(*made));
    // Last of all: SQLite may drop it at once.
    sqlite3_set_auxdata(context, argument, made.release(),
                        [](void* prepared) { delete static_cast<Prepared*>(prepared); });
}

/// An object of the statement that calls a function, made when first asked for: one for each class. Throws
/// std::bad_alloc.
template<typename Object>
Object& ofStatement(sqlite3_context* context) {
    // Under a negative number SQLite keeps an object for the whole statement, whichever function asks; it
    // does so for its own JSON functions. Were it let go at once, every row would begin anew.
    constexpr int number = Object::numberInStatement;
    if (auto* const kept = static_cast<Object*>(sqlite3_get_auxdata(context, number))) {
        return *kept;
    }
    sqlite3_set_auxdata(context, number, new Object, [](void* kept) { delete static_cast<Object*>(kept); });
    auto* const made = static_cast<Object*>(sqlite3_get_auxdata(context, number));
    return made ? *made : throw std::bad_alloc();
}

} // namespace orvane::engine
