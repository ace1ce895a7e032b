#include "engine/rows/TextOrder.h"

#include <QString>

#include <algorithm>
#include <numeric>

namespace orvane::engine {

TextOrder::TextOrder(const QCollator& collator) {
    std::array<ushort, numRanked> codes;
    std::iota(codes.begin(), codes.end(), ushort(0));
    const auto isLess = [&collator](ushort a, char afterA, ushort b, char afterB) {
        return collator.compare(QString(QChar(a)) + QLatin1Char(afterA),
                                QString(QChar(b)) + QLatin1Char(afterB)) < 0;
    };
    std::stable_sort(codes.begin(), codes.end(),
                     [&isLess](ushort a, ushort b) { return isLess(a, '0', b, '0'); });
    ushort rank = 1;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (i > 0 && isLess(codes[i - 1], '1', codes[i], '0')) { // whatever follows them
            ++rank;
        }
        ranks_[codes[i]] = rank;
    }
}

void TextOrder::append(std::string_view utf8, std::string& bytes) const {
    const QString text = QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
    for (const QChar each : text) {
        const ushort code = each.unicode();
        const ushort order = code < numRanked ? ranks_[code] : each.toCaseFolded().unicode();
        bytes += static_cast<char>(order >> 8);
        bytes += static_cast<char>(order & 0xff);
    }
}

} // namespace orvane::engine
