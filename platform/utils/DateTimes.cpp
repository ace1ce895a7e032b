#include "platform/utils/DateTimes.h"

namespace orvane::utils {

QDateTime dateTimeOfText(const QString& text) {
    constexpr int dateLength = 10;
    if (text.size() == dateLength) {
        const QDate date = QDate::fromString(text, Qt::ISODate);
        return date.isValid() ? QDateTime(date, QTime(0, 0), Qt::UTC) : QDateTime();
    }
    const QLatin1Char utc('Z');
    const bool hasOffset = text.endsWith(utc, Qt::CaseInsensitive) ||
                           text.indexOf(QLatin1Char('+'), dateLength) >= 0 ||
                           text.indexOf(QLatin1Char('-'), dateLength) >= 0;
    return QDateTime::fromString(hasOffset ? text : text + utc, Qt::ISODate);
}

} // namespace orvane::utils
