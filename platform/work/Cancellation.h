#pragma once

#include "platform/Export.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

namespace orvane::work {

/// Long work was cancelled. The text is UTF-8 for the user.
class ORVANE_PLATFORM_EXPORT Cancelled : public std::runtime_error {
public:
    Cancelled();
};

/// Lets long work that runs inside one step of a statement notice that the user cancelled. Made when the work
/// begins; a cancellation before that moment has no effect on it. Any thread.
class ORVANE_PLATFORM_EXPORT Cancellation {
public:
    Cancellation();

    /// Whether cancelAll was called since this object was made. Costs one relaxed atomic load.
    bool isRequested() const;
    /// Throws Cancelled when it was.
    void check() const;

    /// Cancels all work that is under way.
    static void cancelAll();

private:
    std::uint64_t since_;
};

/// An order for sorting, which takes long for many elements: looks at the cancellation now and then, and
/// throws Cancelled out of the sort. The elements are then in any order. For one sort, in one thread.
template<class Order>
auto cancellable(const Cancellation& cancellation, Order order) {
    return [&cancellation, order = std::move(order), comparisons = 0u](const auto& a, const auto& b) mutable {
        constexpr unsigned comparisonsBetweenChecks = 4096;
        if (++comparisons % comparisonsBetweenChecks == 0) {
            cancellation.check();
        }
        return order(a, b);
    };
}

} // namespace orvane::work
