#include "platform/log/Logger.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using orvane::LogEntry;
using orvane::LogLevel;

void write(LogLevel level, const QString& text) {
    orvane::loggerInstance()->write(level, QStringLiteral("LoggerTest"), 7, QStringLiteral("void write()"),
                                    text);
}

TEST(Logger, TellsOnlyWarningsUntilAnotherSinkIsSet) {
    testing::internal::CaptureStderr();
    write(LogLevel::Info, QStringLiteral("тихо"));
    write(LogLevel::Warning, QStringLiteral("внимание"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "LoggerTest: внимание\n");
}

TEST(Logger, HandsEveryEntryOfEveryThreadToTheSinkOneAtATime) {
    constexpr int threads = 4;
    constexpr int perThread = 500;
    std::vector<LogEntry> entries; // unguarded on purpose: the logger calls the sink under its lock
    auto before = orvane::loggerInstance()->exchangeSink(
        [&entries](const LogEntry& entry) { entries.push_back(entry); });
    {
        std::vector<std::jthread> writers;
        for (int i = 0; i < threads; ++i) {
            writers.emplace_back([] {
                for (int n = 0; n < perThread; ++n) {
                    write(LogLevel::Trace, QString::number(n));
                }
            });
        }
    }
    orvane::loggerInstance()->exchangeSink(nullptr);
    write(LogLevel::Warning, QStringLiteral("nobody listens"));
    orvane::loggerInstance()->exchangeSink(std::move(before));
    ASSERT_EQ(entries.size(), std::size_t(threads * perThread));
    EXPECT_EQ(entries.front().level, LogLevel::Trace);
    EXPECT_EQ(entries.front().sourceFile, QStringLiteral("LoggerTest"));
    EXPECT_EQ(entries.front().line, 7);
    EXPECT_EQ(entries.front().function, QStringLiteral("void write()"));
}

} // namespace
