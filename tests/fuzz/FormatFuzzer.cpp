// Pictures of numbers and times: the first eight bytes are the number, the rest is the picture. The text that
// comes out is never much longer than its picture and the digits of the largest number.
#include "engine/functions/NumberPattern.h"
#include "engine/functions/TimePattern.h"

#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    double number = 0.0;
    if (size < sizeof number) {
        return 0;
    }
    std::memcpy(&number, data, sizeof number);
    const QString pattern = QString::fromUtf8(reinterpret_cast<const char*>(data + sizeof number),
                                              static_cast<int>(size - sizeof number));
    const QTime time = QTime(0, 0).addSecs(data[0] * 256 + data[1]);
    constexpr int longestNumber = 1000;
    for (const char* name : {"C", "ru_RU", "ar_EG"}) {
        const QLocale locale(QString::fromLatin1(name));
        const orvane::engine::NumberPattern picture(pattern);
        if (picture.isValid() && picture.format(number, locale).size() > 2 * pattern.size() + longestNumber) {
            std::abort();
        }
        if (orvane::engine::formatTimeByPattern(time, pattern, locale).size() > 10 * pattern.size() + 20) {
            std::abort();
        }
    }
    return 0;
}
