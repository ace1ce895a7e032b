#include "host/shell/output/Output.h"

#include "host/providers/datasets/FileExchange.h"

#include "host/shell/messages/Shell.h"

#include "platform/utils/TemporaryFile.h"
#include "platform/utils/VisibleText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

[[noreturn]] void fail(const QString& what) {
    const int reason = errno;
    throw OutputError(
        QStringLiteral("%0: %1").arg(what, QString::fromLocal8Bit(std::strerror(reason))).toStdString());
}

/// False when nobody reads any more.
bool writeUnlessClosed(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            return false;
        } else if (errno != EINTR) {
            fail(Shell::tr("ответ не записывается"));
        }
    }
    return true;
}

void writeAll(int descriptor, std::string_view bytes) {
    if (!writeUnlessClosed(descriptor, bytes)) {
        fail(Shell::tr("ответ не записывается"));
    }
}

winsize terminalSize(int descriptor) {
    winsize size{};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size : winsize{};
}

/// Leaves a signal without effect for a while.
class IgnoredSignal {
public:
    explicit IgnoredSignal(int number) : number_(number) {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        ::sigaction(number_, &ignore, &before_);
    }
    ~IgnoredSignal() { ::sigaction(number_, &before_, nullptr); }
    IgnoredSignal(const IgnoredSignal&) = delete;
    IgnoredSignal& operator=(const IgnoredSignal&) = delete;

private:
    int number_;
    struct sigaction before_ {};
};

/// Starts a command with `input` as its standard input. The signals that this program leaves to a thread are
/// the command's own business. 0 when it cannot be started.
pid_t startShell(const std::string& command, int input) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    const char* const arguments[] = {"sh", "-c", command.c_str(), nullptr};
    pid_t process = 0;
    const int failure = ::posix_spawn(&process, "/bin/sh", &actions, &attributes,
                                      const_cast<char* const*>(arguments), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0 ? process : 0;
}

} // namespace

TerminalOutput::TerminalOutput(int descriptor) : Output(4096), descriptor_(descriptor) {}

void TerminalOutput::commit() {
    takeText();
}

void TerminalOutput::discard() {
    text_.clear();
}

void TerminalOutput::takeText() {
    utils::makeLinesVisible(text_);
    writeAll(descriptor_, text_);
    text_.clear();
}

void TerminalOutput::addDrawing(const std::string& drawing) {
    takeText();
    writeAll(descriptor_, drawing);
}

int terminalWidth(int descriptor) {
    return terminalSize(descriptor).ws_col;
}

int terminalHeight() {
    return terminalSize(STDOUT_FILENO).ws_row;
}

HeldOutput::HeldOutput(int descriptor) : Output(std::size_t{64} << 20), descriptor_(descriptor) {}

void HeldOutput::takeText() {
    if (!overflow_) {
        overflow_.reset(utils::openTemporaryStream());
    }
    if (!overflow_) {
        fail(Shell::tr("временный файл не создаётся"));
    }
    if (std::fwrite(text_.data(), 1, text_.size(), overflow_.get()) != text_.size()) {
        fail(Shell::tr("временный файл не записывается"));
    }
    text_.clear();
}

void HeldOutput::commit() {
    if (!writeTo(descriptor_)) {
        fail(Shell::tr("ответ не записывается"));
    }
    discard();
}

bool HeldOutput::writeTo(int descriptor) {
    if (overflow_) {
        takeText();
        std::rewind(overflow_.get());
        std::array<char, 1 << 16> block;
        while (const std::size_t size = std::fread(block.data(), 1, block.size(), overflow_.get())) {
            if (!writeUnlessClosed(descriptor, {block.data(), size})) {
                return false;
            }
        }
        if (std::ferror(overflow_.get())) {
            fail(Shell::tr("временный файл не читается"));
        }
    }
    return writeUnlessClosed(descriptor, text_);
}

void HeldOutput::discard() {
    overflow_.reset();
    text_.clear();
}

void PagedOutput::discard() {
    HeldOutput::discard();
    drawing_.clear();
}

void PagedOutput::takeText() {
    utils::makeLinesVisible(text_);
    HeldOutput::takeText();
}

void PagedOutput::commit() {
    utils::makeLinesVisible(text_);
    const std::string drawing = std::exchange(drawing_, {});
    const char* const chosen = std::getenv("PAGER");
    const std::string command = chosen ? chosen : "less -S";
    const bool wantsPager = command.find_first_not_of(" \t") != std::string::npos;
    if (wantsPager && isLongerThanScreen() && page(command)) {
        discard();
    } else {
        HeldOutput::commit();
    }
    text_ = drawing;
    HeldOutput::commit();
}

bool PagedOutput::isLongerThanScreen() {
    const int height = terminalHeight();
    return hasOverflow() || (height > 0 && std::count(text().begin(), text().end(), '\n') >= height);
}

bool PagedOutput::page(const std::string& command) {
    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_CLOEXEC) != 0) {
        return false;
    }
    pagerRuns_(true);
    const pid_t pager = startShell(command, pipeEnds[0]);
    ::close(pipeEnds[0]);
    if (pager != 0) {
        const IgnoredSignal brokenPipe(SIGPIPE);
        writeTo(pipeEnds[1]); // up to where the user has read enough
    }
    ::close(pipeEnds[1]);
    int status = -1;
    while (pager != 0 && ::waitpid(pager, &status, 0) < 0 && errno == EINTR) {
    }
    pagerRuns_(false);
    const bool leftByUser = WIFSIGNALED(status) && WTERMSIG(status) == SIGINT;
    return pager != 0 && (leftByUser || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
}

FileOutput::FileOutput(std::string path, bool overwrites)
    : Output(1 << 16), path_(std::move(path)), overwrites_(overwrites) {
    const QString file = QString::fromStdString(path_);
    if (!overwrites_ && ::access(path_.c_str(), F_OK) == 0) {
        throw OutputError(QStringLiteral("%0: %1")
                              .arg(file, Shell::tr("файл уже есть; с --overwrite он заменяется"))
                              .toStdString());
    }
    try {
        directory_ = files::ResultDirectory::beside(file);
    } catch (const std::runtime_error& error) {
        throw OutputError(path_ + ": " + error.what());
    }
    temporaryPath_ = directory_->filePath(QStringLiteral("result")).toStdString();
    descriptor_ = ::open(temporaryPath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        fail(file);
    }
}

FileOutput::~FileOutput() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

void FileOutput::takeText() {
    writeAll(descriptor_, text_);
    text_.clear();
}

void FileOutput::commit() {
    takeText();
    committedSize_ = ::lseek(descriptor_, 0, SEEK_CUR);
}

void FileOutput::discard() {
    text_.clear();
    if (::ftruncate(descriptor_, committedSize_) != 0 || ::lseek(descriptor_, committedSize_, SEEK_SET) < 0) {
        fail(QString::fromStdString(path_));
    }
}

void FileOutput::finish() {
    const QString file = QString::fromStdString(path_);
    if (::close(std::exchange(descriptor_, -1)) != 0) {
        fail(file);
    }
    try {
        files::FileExchange exchange(directory_);
        exchange.put(temporaryPath_, path_, overwrites_);
        exchange.carryOut();
    } catch (const std::runtime_error& error) {
        throw OutputError(error.what());
    }
}

} // namespace orvane::shell
