#pragma once

#include "platform/dp/ValueOrder.h"
#include <orvane/engine/Export.h>

#include <QCollator>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::engine {

/// The order of the collation "Locale" on UTF-8 texts: the order of a collator, found without it for most
/// texts. Plain characters - printable ASCII and the Cyrillic letters as far as the locale orders them one by
/// one, each by a weight of its own - have a rank; texts that differ in plain characters are ordered by the
/// ranks, all others are the collator's. Bytes that are no UTF-8 count as U+FFFD each. Takes no memory for
/// texts of ordinary length. May be used by several threads at once.
class ORVANE_ENGINE_EXPORT LocaleOrder final : public dp::TextComparison {
public:
    explicit LocaleOrder(QCollator collator);

    /// The order of collator() under the default locale as it is now.
    static std::shared_ptr<const LocaleOrder> current();

    int compare(std::string_view a, std::string_view b) const override;

    /// Stores the ranks of a text that is all plain characters, none of them zero, else returns false. Two
    /// such texts are equal when their ranks are, and ordered as their ranks are.
    bool plainKey(std::string_view text, std::string& key) const override {
        key.clear();
        return appendPlainKey(text, key);
    }
    /// The same behind what the key holds; undefined bytes are appended where the answer is false.
    bool appendPlainKey(std::string_view text, std::string& key) const;

    const QCollator& collator() const { return collator_; }

private:
    /// Positions in ranks_: ASCII, then the 128 characters from U+0400 on, which take two bytes each.
    static constexpr std::size_t numAscii = 0x80;
    static constexpr char16_t firstCyrillic = 0x400;
    static constexpr std::size_t numRanked = numAscii + 0x80;
    static constexpr std::uint8_t endRank = 0;
    static constexpr std::uint8_t noRank = 0xff;

    static QChar rankedCharacter(std::size_t position);
    static std::uint8_t nextRank(const std::array<std::uint8_t, numRanked>& ranks, const char*& at,
                                 const char* end);
    void rankCharacters();
    void excludeDigraphs();
    bool mayJoin(const char* at, const char* end) const;
    int compareByCollator(std::string_view a, std::string_view b) const;

    QCollator collator_;
    std::array<std::uint8_t, numRanked> ranks_; ///< from 1 on; noRank for what is not plain
};

} // namespace orvane::engine
