#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace orvane::engine {

/// A valid time by a pattern of formatTime, in the digits and the AM and PM texts of the locale.
QString formatTimeByPattern(const QTime& time, const QString& pattern, const QLocale& locale);

} // namespace orvane::engine
