#include "host/maps/classes/ValueSummary.h"

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

constexpr std::size_t mostSampled = 100'000;
constexpr std::size_t mostTexts = 10'000;

} // namespace

void ValueSummary::add(const Value& value) {
    switch (value.kind) {
    case Value::Kind::None: ++none_; return;
    case Value::Kind::Text:
        key_.assign(value.text);
        if (const auto known = texts_.find(key_); known != texts_.end()) {
            ++known->second;
        } else if (texts_.size() < mostTexts) {
            texts_.emplace(key_, 1);
        }
        return;
    case Value::Kind::Number: break;
    }
    if (!std::isfinite(value.number)) {
        ++none_;
        return;
    }
    least_ = numbers_ == 0 ? value.number : std::min(least_, value.number);
    greatest_ = numbers_ == 0 ? value.number : std::max(greatest_, value.number);
    ++numbers_;
    if (sample_.size() < mostSampled) {
        sample_.push_back(value.number);
        return;
    }
    // Vitter's algorithm R on the numbers of Marsaglia's xorshift: the same sample every time.
    random_ ^= random_ << 13U;
    random_ ^= random_ >> 7U;
    random_ ^= random_ << 17U;
    if (const std::uint64_t place = random_ % numbers_; place < mostSampled) {
        sample_[place] = value.number;
    }
}

std::vector<double> ValueSummary::sortedSample() const {
    std::vector<double> sorted = sample_;
    if (!sorted.empty()) {
        sorted.push_back(least_);
        sorted.push_back(greatest_);
    }
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

} // namespace orvane::maps
