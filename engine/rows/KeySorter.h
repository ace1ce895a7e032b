#pragma once

#include "platform/work/Cancellation.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::engine {

/// Puts strings of bytes in order, each byte unsigned. Eight bytes at a time are brought together, so that
/// sorting stays off the strings. No key may be the beginning of another one.
class KeySorter {
public:
    /// Begins a key: what is appended to the answer belongs to it, until the next one begins.
    std::string& next() {
        starts_.push_back(bytes_.size());
        return bytes_;
    }
    /// Forgets the key that was begun last.
    void drop() {
        bytes_.resize(starts_.back());
        starts_.pop_back();
    }

    /// The numbers of the keys, which count from 0, in order; equal keys in any. Throws work::Cancelled.
    std::vector<std::uint32_t> sort(const work::Cancellation& cancellation) const;

private:
    /// What is moved while sorting: eight bytes of the key, and which one it is.
    struct Item {
        std::uint64_t head;
        std::uint32_t number;
    };
    using Items = std::span<Item>;

    std::string_view key(std::uint32_t number) const;
    void sortFrom(Items items, std::size_t depth, const work::Cancellation& cancellation) const;

    std::string bytes_;
    std::vector<std::size_t> starts_;
};

} // namespace orvane::engine
