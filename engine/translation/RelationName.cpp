#include <orvane/engine/RelationName.h>

#include <charconv>
#include <string_view>

namespace orvane::engine {

std::string toCollationName(const RelationName& name) {
    return name.relation + ' ' + std::to_string(name.first.size()) + ' ' + name.first + ' ' + name.second;
}

std::optional<RelationName> relationNameOf(const char* collation) {
    const std::string_view text = collation;
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos) {
        return std::nullopt;
    }
    std::size_t length = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data() + blank + 1, end, length);
    const auto left = static_cast<std::size_t>(end - behind);
    if (error != std::errc() || left < 2 || *behind != ' ' || length > left - 2 ||
        behind[1 + length] != ' ') {
        return std::nullopt;
    }
    return RelationName{std::string(text.substr(0, blank)), std::string(behind + 1, length),
                        std::string(behind + 2 + length, end)};
}

} // namespace orvane::engine
