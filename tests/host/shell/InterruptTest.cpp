// Work that cannot be cancelled, and signals: the process ends from another thread.

#include "host/shell/session/Interrupt.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <csignal>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace orvane::shell {
namespace {

using std::chrono::milliseconds;

struct Stop {
    const char* name;
    Interrupt::Patience patience;
    std::vector<int> signals; ///< a quarter of a second apart
    int status;
    int earliest, latest; ///< milliseconds from the first signal to the end
};

class StuckWork : public testing::TestWithParam<Stop> {};

/// Takes signals and is stuck; never returns.
[[noreturn]] void beStuck(const Stop& stop, int readyDescriptor) {
    Interrupt interrupt;
    interrupt.exchangePatience(stop.patience);
    interrupt.setCancel([] {}); // nobody listens
    interrupt.setCleanUp([readyDescriptor] { ::close(readyDescriptor); });
    ::setlinebuf(stderr);
    ::flockfile(stderr); // as one is stuck who writes there
    EXPECT_EQ(::write(readyDescriptor, "!", 1), 1);
    while (true) {
        ::pause();
    }
}

TEST_P(StuckWork, isNotWaitedFor) {
    const Stop& stop = GetParam();
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t process = ::fork();
    if (process == 0) {
        beStuck(stop, ends[1]);
    }
    ::close(ends[1]);
    char byte = 0;
    ASSERT_EQ(::read(ends[0], &byte, 1), 1);
    QElapsedTimer timer;
    timer.start();
    for (std::size_t i = 0; i < stop.signals.size(); ++i) {
        std::this_thread::sleep_for(milliseconds(i == 0 ? 0 : 250));
        ::kill(process, stop.signals[i]);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), stop.status);
    EXPECT_GE(timer.elapsed(), stop.earliest);
    EXPECT_LT(timer.elapsed(), stop.latest);
    EXPECT_EQ(::read(ends[0], &byte, 1), 0) << "not cleaned up";
    ::close(ends[0]);
}

using enum Interrupt::Patience;

INSTANTIATE_TEST_SUITE_P(Signals, StuckWork,
                         testing::Values(Stop{"CtrlC", Short, {SIGINT}, 130, 70, 500},
                                         Stop{"Terminate", Short, {SIGTERM}, 143, 70, 500},
                                         Stop{"HangUp", Short, {SIGHUP}, 129, 70, 500},
                                         Stop{"CtrlCInASession", Long, {SIGINT}, 130, 2000, 4000},
                                         Stop{"CtrlCTwice", Long, {SIGINT, SIGINT}, 130, 250, 1000},
                                         Stop{"Impatient", Long, {SIGTERM, SIGINT}, 143, 250, 1000}),
                         [](const auto& stop) { return std::string(stop.param.name); });

TEST(Interrupts, endWithTheWorkUnlessTheyAreFinal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Interrupt interrupt;
        interrupt.exchangePatience(Interrupt::Patience::Long);
        std::atomic<int> cancellations = 0;
        interrupt.setCancel([&] { ++cancellations; });
        interrupt.setIgnoresKeyboard(true);
        ::kill(::getpid(), SIGINT);
        std::this_thread::sleep_for(milliseconds(50));
        EXPECT_FALSE(interrupt.requested());
        interrupt.setIgnoresKeyboard(false);
        ::kill(::getpid(), signal);
        while (cancellations < 2) {
            std::this_thread::sleep_for(milliseconds(1));
        }
        EXPECT_EQ(interrupt.status(), 128 + signal);
        interrupt.reset();
        EXPECT_EQ(interrupt.requested(), signal == SIGTERM);
        EXPECT_EQ(interrupt.isFinal(), signal == SIGTERM);
    }
}

} // namespace
} // namespace orvane::shell
