#pragma once

#include <QByteArray>

#include <ctime>

namespace orvane::tests {

/// Zones with nothing but their rules, so that no machine has to know them: without summer time, with hours
/// that it skips at 2:00 in March, at midnight in November.
constexpr const char* zones[] = {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "BRT3BRST,M11.1.0/0,M2.3.0/0"};

/// Puts back, when it goes, the time zone that it found.
class TimeZone {
public:
    explicit TimeZone(const char* name) { set(name); }
    ~TimeZone() { set(before_.isNull() ? nullptr : before_.constData()); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

    static void set(const char* name) {
        name != nullptr ? qputenv("TZ", name) : qunsetenv("TZ");
        tzset();
    }

private:
    const QByteArray before_ = qgetenv("TZ");
};

} // namespace orvane::tests
