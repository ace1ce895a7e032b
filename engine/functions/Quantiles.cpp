#include <orvane/engine/functions/Aggregates.h>

#include "Barrier.h"
#include "GroupState.h"
#include <orvane/engine/functions/Converters.h>

#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace orvane::engine {

namespace {

/// The numbers of a group. A list, until a window asks while rows still come and go: from then on a tree that
/// knows places.
class Numbers {
public:
    std::optional<double> share; ///< that the first row asks for

    void add(double number) {
        if (isOrdered_) {
            tree_.insert({number, nextTwin_++});
        } else {
            list_.push_back(number);
        }
    }
    void remove(double number) {
        order();
        const auto found = tree_.lower_bound({number, 0});
        if (found != tree_.end() && found->first == number) {
            tree_.erase(found);
        }
    }
    /// Makes a tree of the list.
    void order() {
        if (!std::exchange(isOrdered_, true)) {
            for (const double number : std::exchange(list_, {})) {
                tree_.insert({number, nextTwin_++});
            }
        }
    }
    /// Nothing where there are no numbers. A list is put into another order.
    std::optional<double> quantile() {
        const std::size_t count = isOrdered_ ? tree_.size() : list_.size();
        if (count == 0 || !share) {
            return std::nullopt;
        }
        const double place = *share * static_cast<double>(count - 1);
        const auto below = std::min(static_cast<std::size_t>(place), count - 1);
        const double rest = place - static_cast<double>(below);
        const double low = at(below);
        return rest > 0 && below + 1 < count ? std::lerp(low, next(below), rest) : low;
    }

private:
    /// Equal numbers are told apart by the order in which they came.
    using Key = std::pair<double, std::uint64_t>;
    using Tree = __gnu_pbds::tree<Key, __gnu_pbds::null_type, std::less<Key>, __gnu_pbds::rb_tree_tag,
                                  __gnu_pbds::tree_order_statistics_node_update>;

    double at(std::size_t place) {
        if (isOrdered_) {
            return tree_.find_by_order(place)->first;
        }
        const auto found = list_.begin() + static_cast<std::ptrdiff_t>(place);
        std::nth_element(list_.begin(), found, list_.end());
        return *found;
    }
    /// The number behind the one that `at` has found.
    double next(std::size_t place) const {
        return isOrdered_
                   ? tree_.find_by_order(place + 1)->first
                   : *std::min_element(list_.begin() + static_cast<std::ptrdiff_t>(place) + 1, list_.end());
    }

    std::vector<double> list_;
    Tree tree_;
    bool isOrdered_ = false;
    std::uint64_t nextTwin_ = 0;
};

void add(sqlite3_context* context, sqlite3_value* value, double share) {
    bool ok = false;
    const double number = toDouble(value, &ok);
    if (!ok || std::isnan(number)) {
        return;
    }
    auto& numbers = groupOf<Numbers>(context);
    if (numbers.share && *numbers.share != share) {
        throw std::runtime_error("Percentile: the share differs within a group");
    }
    numbers.share = share;
    numbers.add(number);
}

void remove(sqlite3_context* context, sqlite3_value* value) {
    barrier(context, [&] {
        bool ok = false;
        const double number = toDouble(value, &ok);
        if (ok && !std::isnan(number)) {
            groupOf<Numbers>(context).remove(number);
        }
    });
}

void give(sqlite3_context* context, Numbers* numbers) {
    if (const auto quantile = numbers ? numbers->quantile() : std::nullopt) {
        sqlite3_result_double(context, *quantile);
    }
}

void giveCurrent(sqlite3_context* context) {
    barrier(context, [&] {
        auto* const numbers = currentGroup<Numbers>(context);
        if (numbers) {
            numbers->order();
        }
        give(context, numbers);
    });
}

void giveLast(sqlite3_context* context) {
    barrier(context, [&] { give(context, finishedGroup<Numbers>(context).get()); });
}

} // namespace

void Median::step(sqlite3_context* context, int, sqlite3_value** values) {
    constexpr double half = 0.5;
    barrier(context, [&] { add(context, values[0], half); });
}
void Median::inverse(sqlite3_context* context, int, sqlite3_value** values) {
    remove(context, values[0]);
}
void Median::value(sqlite3_context* context) {
    giveCurrent(context);
}
void Median::final(sqlite3_context* context) {
    giveLast(context);
}

void Percentile::step(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        bool ok = false;
        const double share = toDouble(values[1], &ok);
        if (!ok) {
            return;
        }
        if (!(share >= 0 && share <= 1)) {
            throw std::runtime_error("Percentile: the share has to lie between 0 and 1");
        }
        add(context, values[0], share);
    });
}
void Percentile::inverse(sqlite3_context* context, int, sqlite3_value** values) {
    remove(context, values[0]);
}
void Percentile::value(sqlite3_context* context) {
    giveCurrent(context);
}
void Percentile::final(sqlite3_context* context) {
    giveLast(context);
}

} // namespace orvane::engine
