#pragma once

#include <string>
#include <vector>

namespace orvane::tests {

/// The pieces of a text between its "|".
inline std::vector<std::string> pieces(const std::string& text) {
    std::vector<std::string> found;
    std::size_t start = 0;
    for (std::size_t bar = 0; (bar = text.find('|', start)) != std::string::npos; start = bar + 1) {
        found.push_back(text.substr(start, bar - start));
    }
    found.push_back(text.substr(start));
    return found;
}

/// None to `most` of the pieces, drawn at random, one behind the other.
template<class Random>
std::string randomText(const std::vector<std::string>& pieces, Random& random, unsigned most) {
    std::string text;
    for (auto count = random() % (most + 1); count > 0; --count) {
        text += pieces[random() % pieces.size()];
    }
    return text;
}

} // namespace orvane::tests
