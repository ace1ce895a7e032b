#include "TimePattern.h"

namespace orvane::engine {

QString formatTimeByPattern(const QTime& time, const QString& pattern, const QLocale& locale) {
    const QString letters = pattern.isEmpty() ? QStringLiteral("HH:mm:ss.fff") : pattern;
    const ushort zero = locale.zeroDigit().unicode();
    const auto digit = [zero](int value) { return QChar(static_cast<ushort>(zero + value)); };

    QString result;
    int at = 0;
    // How often the letter at `at` stands there, up to a limit; moves behind them.
    const auto repeated = [&letters, &at](int limit) {
        const QChar letter = letters.at(at);
        int count = 0;
        while (count < limit && at < letters.size() && letters.at(at) == letter) {
            ++count;
            ++at;
        }
        return count;
    };
    const auto number = [&](int value) {
        if (repeated(2) == 2) {
            result += digit(value / 10);
            result += digit(value % 10);
        } else {
            result += locale.toString(value);
        }
    };

    while (at < letters.size()) {
        switch (letters.at(at).unicode()) {
        case 'H': number(time.hour()); break;
        case 'h': number(time.hour() % 12); break;
        case 'm': number(time.minute()); break;
        case 's': number(time.second()); break;
        case 'f': {
            const int places = repeated(3);
            const int parts[] = {time.msec() / 100, time.msec() % 100 / 10, time.msec() % 10};
            for (int i = 0; i < places; ++i) {
                result += digit(parts[i]);
            }
            break;
        }
        case 't': {
            const QString name = time.hour() > 11 ? locale.pmText() : locale.amText();
            result += repeated(2) == 2 ? name : name.left(1);
            break;
        }
        default: result += letters.at(at++);
        }
    }
    return result;
}

} // namespace orvane::engine
