#include "host/shell/Output.h"

#include "host/shell/Shell.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

[[noreturn]] void fail(const QString& what) {
    const int reason = errno;
    throw OutputError(
        QStringLiteral("%0: %1").arg(what, QString::fromLocal8Bit(std::strerror(reason))).toStdString());
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            fail(Shell::tr("ответ не записывается"));
    }
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
    writeAll(descriptor_, text_);
    text_.clear();
}

int terminalWidth() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

HeldOutput::HeldOutput(int descriptor) : Output(std::size_t{64} << 20), descriptor_(descriptor) {}

void HeldOutput::takeText() {
    if (!overflow_)
        overflow_.reset(std::tmpfile());
    if (!overflow_)
        fail(Shell::tr("временный файл не создаётся"));
    if (std::fwrite(text_.data(), 1, text_.size(), overflow_.get()) != text_.size())
        fail(Shell::tr("временный файл не записывается"));
    text_.clear();
}

void HeldOutput::commit() {
    if (overflow_) {
        takeText();
        std::rewind(overflow_.get());
        std::array<char, 1 << 16> block;
        while (const std::size_t size = std::fread(block.data(), 1, block.size(), overflow_.get()))
            writeAll(descriptor_, {block.data(), size});
        if (std::ferror(overflow_.get()))
            fail(Shell::tr("временный файл не читается"));
    }
    writeAll(descriptor_, text_);
    discard();
}

void HeldOutput::discard() {
    overflow_.reset();
    text_.clear();
}

FileOutput::FileOutput(std::string path) : Output(1 << 16), path_(std::move(path)) {
    temporaryPath_ = path_ + ".XXXXXX";
    descriptor_ = ::mkstemp(temporaryPath_.data());
    if (descriptor_ < 0) {
        temporaryPath_.clear();
        fail(QString::fromStdString(path_));
    }
    // mkstemp makes the file for the user alone; a result is as open as any other new file.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(descriptor_, 0666 & ~mask);
}

FileOutput::~FileOutput() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
    if (!temporaryPath_.empty())
        ::unlink(temporaryPath_.c_str());
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
    if (::ftruncate(descriptor_, committedSize_) != 0 || ::lseek(descriptor_, committedSize_, SEEK_SET) < 0)
        fail(QString::fromStdString(path_));
}

void FileOutput::finish() {
    if (::close(std::exchange(descriptor_, -1)) != 0 ||
        std::rename(temporaryPath_.c_str(), path_.c_str()) != 0)
        fail(QString::fromStdString(path_));
    temporaryPath_.clear();
}

} // namespace orvane::shell
