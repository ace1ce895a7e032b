#include "engine/indices/TextOrder.h"

#include <algorithm>
#include <numeric>

namespace orvane::engine {

TextOrder::TextOrder(const QCollator& collator) {
    std::array<ushort, numRanked> codes;
    std::iota(codes.begin(), codes.end(), ushort(0));
    const auto compare = [&collator](ushort a, ushort b) {
        return collator.compare(QString(QChar(a)), QString(QChar(b)));
    };
    std::stable_sort(codes.begin(), codes.end(),
                     [&compare](ushort a, ushort b) { return compare(a, b) < 0; });
    ushort rank = 1;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (i > 0 && compare(codes[i - 1], codes[i]) != 0) {
            ++rank;
        }
        ranks_[codes[i]] = rank;
    }
}

void TextOrder::append(std::string_view utf8, std::string& bytes) const {
    const auto isAscii = [](char byte) { return static_cast<signed char>(byte) >= 0; };
    if (std::all_of(utf8.begin(), utf8.end(), isAscii)) {
        for (const char byte : utf8) {
            appendCode(static_cast<uchar>(byte), bytes);
        }
        return;
    }
    const QString text = QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
    for (const QChar code : text) {
        appendCode(code.toCaseFolded().unicode(), bytes);
    }
}

void TextOrder::appendCode(ushort code, std::string& bytes) const {
    const ushort order = code < numRanked ? ranks_[code] : code;
    bytes += static_cast<char>(order >> 8);
    bytes += static_cast<char>(order & 0xff);
}

} // namespace orvane::engine
