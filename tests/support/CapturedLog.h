#pragma once

#include "platform/log/Logger.h"

#include <vector>

namespace orvane::tests {

/// Takes the log's entries while it lives.
struct CapturedLog {
    CapturedLog()
        : before_(
              loggerInstance()->exchangeSink([this](const LogEntry& entry) { entries.push_back(entry); })) {}
    ~CapturedLog() { loggerInstance()->exchangeSink(std::move(before_)); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    std::vector<LogEntry> entries;

private:
    CuteMessageLogger::Sink before_;
};

} // namespace orvane::tests
