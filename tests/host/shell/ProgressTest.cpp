#include "host/shell/output/Progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include <pty.h>
#include <unistd.h>

namespace orvane::shell {
namespace {

/// What goes to standard error while a function runs, where that is a terminal so wide.
template<class Function>
std::string shownOnTerminal(unsigned short columns, Function function) {
    winsize size{24, columns, 0, 0};
    int screen = -1;
    int terminal = -1;
    EXPECT_EQ(::openpty(&screen, &terminal, nullptr, nullptr, &size), 0);
    const int before = ::dup(STDERR_FILENO);
    ::dup2(terminal, STDERR_FILENO);
    function();
    ::dup2(before, STDERR_FILENO);
    ::close(before);
    ::close(terminal);
    std::string shown;
    char block[256];
    for (ssize_t length = 0; (length = ::read(screen, block, sizeof block)) > 0;) {
        shown.append(block, static_cast<std::size_t>(length));
    }
    ::close(screen);
    return shown;
}

TEST(Progress, ShowsTheWorkInOneLineAndWipesIt) {
    const auto work = [] {
        Progress progress;
        work::Progress index(QStringLiteral("индекс города(имя\u202E)"), 200);
        index.advance(50);
        std::this_thread::sleep_for(std::chrono::milliseconds(600)); // it appears after 500
    };
    const std::string wipe = "\r\033\\[K";
    EXPECT_THAT(shownOnTerminal(80, work),
                testing::MatchesRegex("(" + wipe + "индекс города\\(имя<U\\+202E>\\): 25 %)+" + wipe));
    EXPECT_THAT(shownOnTerminal(20, work),
                testing::MatchesRegex("(" + wipe + "индекс города\\(имя<U)+" + wipe));
}

} // namespace
} // namespace orvane::shell
