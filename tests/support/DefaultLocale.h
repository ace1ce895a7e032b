#pragma once

#include <QLocale>

namespace orvane::tests {

/// Puts back, when it goes, the default locale that it found.
class DefaultLocale {
public:
    explicit DefaultLocale(const char* name) { set(QLatin1String(name)); }
    ~DefaultLocale() { QLocale::setDefault(before_); }
    DefaultLocale(const DefaultLocale&) = delete;
    DefaultLocale& operator=(const DefaultLocale&) = delete;

    static void set(const QString& name) { QLocale::setDefault(QLocale(name)); }

private:
    const QLocale before_;
};

} // namespace orvane::tests
