#pragma once

#include "host/providers/datasets/ResultDirectory.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvane::shell {

/// The output cannot be written; the text is UTF-8 for the user.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where the results of statements go. A result is appended to text(), row by row, and either committed or
/// discarded, so that nothing is seen of a statement that fails. Used from one thread. The operations throw
/// OutputError.
class Output {
public:
    virtual ~Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// What has been appended since it was last taken away; only appended to.
    std::string& text() { return text_; }
    void rowDone() {
        if (text_.size() >= capacity_) {
            takeText();
        }
    }
    /// Appends a drawing of the program's own, which is no text that others wrote: it is shown as it is, and
    /// not paged.
    virtual void addDrawing(const std::string& drawing) {
        text_ += drawing;
        rowDone();
    }
    /// The statement has succeeded.
    virtual void commit() = 0;
    /// The statement has failed.
    virtual void discard() = 0;
    /// All statements have succeeded.
    virtual void finish() {}
    /// Whether rows are seen before the statement is done.
    virtual bool isLive() const { return false; }

protected:
    explicit Output(std::size_t capacity) : capacity_(capacity) {}
    /// Empties text().
    virtual void takeText() = 0;

    std::string text_;

private:
    std::size_t capacity_;
};

/// A terminal: rows are shown as they come, also those before a failure. Whatever the format, the text is in
/// its visible form (platform/utils/VisibleText.h).
class TerminalOutput : public Output {
public:
    explicit TerminalOutput(int descriptor);
    void commit() override;
    void discard() override;
    void addDrawing(const std::string& drawing) override;
    bool isLive() const override { return true; }

protected:
    void takeText() override;

private:
    int descriptor_;
};

/// Columns of the terminal that a descriptor, standard output unless told otherwise, is now; 0 when it is
/// none or does not tell.
int terminalWidth(int descriptor = 1);
/// Lines of the terminal that standard output is, likewise.
int terminalHeight();

/// A pipe or a redirection: a result is held back until its statement is done, in memory up to 64 MiB, the
/// rest in an unnamed temporary file.
class HeldOutput : public Output {
public:
    explicit HeldOutput(int descriptor);
    void commit() override;
    void discard() override;

protected:
    void takeText() override;
    /// Writes what is held, which stays held. False when `descriptor` leads to a reader that has gone away.
    bool writeTo(int descriptor);
    bool hasOverflow() const { return overflow_ != nullptr; }

private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    int descriptor_;
    std::unique_ptr<std::FILE, FileCloser> overflow_;
};

/// The terminal of the prompt: a result that is longer than the screen is shown by the pager, the shell
/// command in $PAGER or else "less -S"; an empty $PAGER wants none. A result is shown when its statement is
/// done, in its visible form. What a pager that cannot be run, or fails, may have swallowed is written to the
/// terminal.
class PagedOutput : public HeldOutput {
public:
    /// Tells `pagerRuns` while the pager has the keyboard: Ctrl-C is meant for the pager then.
    PagedOutput(int descriptor, std::function<void(bool)> pagerRuns)
        : HeldOutput(descriptor), pagerRuns_(std::move(pagerRuns)) {}
    void commit() override;
    void discard() override;
    void addDrawing(const std::string& drawing) override { drawing_ += drawing; }

protected:
    void takeText() override;

private:
    bool isLongerThanScreen();
    /// False when the pager fails.
    bool page(const std::string& command);

    std::function<void(bool)> pagerRuns_;
    std::string drawing_; ///< shown behind the text
};

/// A file that takes its place, in one step, when all statements have succeeded; until then, and after a
/// failure, what was there before stays as it is.
class FileOutput : public Output {
public:
    /// Throws where there is such a file, unless it may be replaced.
    FileOutput(std::string path, bool overwrites);
    ~FileOutput() override;
    void commit() override;
    void discard() override;
    void finish() override;

protected:
    void takeText() override;

private:
    std::string path_;
    bool overwrites_;
    std::shared_ptr<files::ResultDirectory> directory_; ///< where the file is until then
    std::string temporaryPath_;
    int descriptor_ = -1;
    std::int64_t committedSize_ = 0;
};

} // namespace orvane::shell
