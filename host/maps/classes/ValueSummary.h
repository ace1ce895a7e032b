#pragma once

#include "host/maps/Export.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane::maps {

/// What a feature is coloured by: a number, a text in UTF-8, not owned, or nothing.
struct Value {
    enum class Kind : std::uint8_t { None, Number, Text };

    Kind kind = Kind::None;
    double number = 0;
    std::string_view text;

    /// Nothing for a not-a-number.
    static Value ofNumber(double number) {
        return {number == number ? Kind::Number : Kind::None, number, {}};
    }
    static Value ofText(std::string_view text) { return {Kind::Text, 0, text}; }
};

/// What classes are made of: the values, or of very many a fair sample. Memory stays bounded.
class ORVANE_MAPS_EXPORT ValueSummary {
public:
    void add(const Value& value);

    bool isEmpty() const { return numbers_ == 0 && texts_.empty(); }
    bool hasTexts() const { return !texts_.empty(); }
    bool hasNone() const { return none_ != 0; }
    std::uint64_t numbers() const { return numbers_; }
    double least() const { return least_; }
    double greatest() const { return greatest_; }
    /// In ascending order, least and greatest included.
    std::vector<double> sortedSample() const;
    /// How often each text came; texts beyond the first ten thousand different ones are not counted.
    const std::unordered_map<std::string, std::uint64_t>& texts() const { return texts_; }

private:
    std::vector<double> sample_;
    std::unordered_map<std::string, std::uint64_t> texts_;
    std::uint64_t numbers_ = 0;
    std::uint64_t none_ = 0;
    std::uint64_t random_ = 0x9E3779B97F4A7C15U;
    double least_ = 0;
    double greatest_ = 0;
    std::string key_;
};

} // namespace orvane::maps
