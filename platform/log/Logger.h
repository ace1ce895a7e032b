#pragma once

#include "platform/Export.h"

#include <QString>

#include <functional>

namespace orvane {

enum class LogLevel { Trace = 0, Debug = 1, Info = 2, Warning = 3 };

/// One message with the place it comes from.
struct LogEntry {
    LogLevel level = LogLevel::Info;
    QString sourceFile; ///< file name without extension, e.g. "Engine"
    int line = 0;
    QString function; ///< full signature text
    QString text;
};

/// Hands entries to the current sink. Any thread may write; entries reach the sink one at a time.
class ORVANE_PLATFORM_EXPORT CuteMessageLogger {
public:
    using Sink = std::function<void(const LogEntry&)>;

    void write(LogLevel level, const QString& sourceFile, int line, const QString& function,
               const QString& text);

    /// Replaces the sink and returns the one before. An empty sink drops every entry.
    Sink exchangeSink(Sink sink);
};

/// The logger of the process. Its first sink writes warnings to standard error.
ORVANE_PLATFORM_EXPORT CuteMessageLogger* loggerInstance();

} // namespace orvane
