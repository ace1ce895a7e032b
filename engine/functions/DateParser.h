#pragma once

#include <QDateTime>
#include <QString>

namespace orvane::engine {

/// The tolerant parser behind stringToDate. `now` is the local time that "now", "today" and missing fields
/// stand for. Returns date, time or date-time text, or an empty text for an impossible one. Takes time in
/// proportion to the text.
QString parseDateText(const QString& text, const QDateTime& now);

} // namespace orvane::engine
