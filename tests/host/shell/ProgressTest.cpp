#include "host/shell/Progress.h"

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
    char text[4096];
    const ssize_t length = ::read(screen, text, sizeof text);
    for (const int descriptor : {before, terminal, screen})
        ::close(descriptor);
    return std::string(text, length > 0 ? static_cast<std::size_t>(length) : 0);
}

TEST(Progress, ShowsTheWorkInOneLineAndWipesIt) {
    const auto work = [] {
        Progress progress;
        dp::Progress index(QStringLiteral("индекс города(имя)"), 200);
        index.advance(50);
        std::this_thread::sleep_for(std::chrono::milliseconds(600)); // it appears after 500
    };
    EXPECT_EQ(shownOnTerminal(80, work), "\r\033[Kиндекс города(имя): 25 %\r\033[K");
    EXPECT_EQ(shownOnTerminal(20, work), "\r\033[Kиндекс города(имя):\r\033[K");
}

} // namespace
} // namespace orvane::shell
