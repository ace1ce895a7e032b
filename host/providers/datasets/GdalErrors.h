#pragma once

#include <QString>

#include <cpl_error.h>

#include <cstdint>

namespace orvane::files {

/// Registers GDAL's drivers, sends what GDAL reports outside any GdalErrorScope, also from its worker
/// threads, to the logger instead of standard error, and gives its temporary files a directory for the
/// process alone. Done once per process.
void registerDrivers();

/// How many failures GDAL has reported outside any GdalErrorScope, and the text of the last one. Any thread.
struct FailuresOutsideScopes {
    std::uint64_t count = 0;
    QString last;
};
FailuresOutsideScopes failuresOutsideScopes();

/// Collects what GDAL reports on this thread while the scope lives: warnings go to the logger (the first few,
/// a damaged file can have one per row), the last error is kept. Scopes nest.
class GdalErrorScope {
public:
    GdalErrorScope();
    ~GdalErrorScope();
    GdalErrorScope(const GdalErrorScope&) = delete;
    GdalErrorScope& operator=(const GdalErrorScope&) = delete;

    /// GDAL's text of the last error, empty when there was none.
    const QString& error() const { return error_; }
    /// Throws std::runtime_error with `what`, and GDAL's text after a colon when there is one.
    [[noreturn]] void raise(const QString& what) const;
    /// raise() when an error was reported.
    void raiseIfFailed(const QString& what) const;

private:
    static void CPL_STDCALL collect(CPLErr level, CPLErrorNum number, const char* text);

    QString error_;
    int warnings_ = 0;
};

} // namespace orvane::files
