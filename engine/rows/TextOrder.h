#pragma once

#include <QCollator>

#include <array>
#include <string>
#include <string_view>

namespace orvane::engine {

/// Bytes whose order is about the order of texts under a collator: as far as it goes by the letters one by
/// one, accents and letter case left out. Texts that a locale tells apart by more than that, or orders
/// otherwise (digraphs, most scripts of Asia), may change places.
class TextOrder {
public:
    explicit TextOrder(const QCollator& collator);

    /// Appends the bytes of a UTF-8 text, two for each UTF-16 code, none of the pairs zero.
    void append(std::string_view utf8, std::string& bytes) const;

private:
    /// Latin, Greek and Cyrillic letters have ranks by the collator, everything behind goes by its code.
    static constexpr int numRanked = 0x530;

    std::array<ushort, numRanked> ranks_;
};

} // namespace orvane::engine
