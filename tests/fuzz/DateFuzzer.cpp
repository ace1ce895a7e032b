// Free date texts: any input gives an empty text or one that reads back as a date, a time or both.
#include "engine/functions/DateParser.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const auto clock = [] { return QDateTime(QDate(2021, 3, 4), QTime(5, 6, 7, 8), Qt::UTC); };
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString result = orvane::engine::parseDateText(text, clock);
    const bool isDate = QDate::fromString(result.left(10), Qt::ISODate).isValid();
    const bool isTime = QTime::fromString(result.right(12), Qt::ISODateWithMs).isValid();
    const bool isWhole = result.isEmpty() || (result.size() == 10 && isDate) ||
                         (result.size() == 12 && isTime) || (result.size() == 23 && isDate && isTime);
    if (!isWhole) {
        std::abort();
    }
    return 0;
}
