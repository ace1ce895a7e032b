#pragma once

#include <histedit.h>

#include <string>
#include <utility>

namespace orvane::shell {

/// The file that keeps a history of libedit's from one prompt to the next. It is read and written by its
/// owner alone, whatever its mode was before. A file of somebody else's, one that somebody else's symbolic
/// link leads to, and what is no file at all are left alone: the history is not kept then. Used from one
/// thread.
class HistoryFile {
public:
    /// In the user's directory for data, which is made where it is missing.
    static HistoryFile standard();
    explicit HistoryFile(std::string path) : path_(std::move(path)) {}

    /// Adds what can be read; of a file in another form nothing.
    void load(History* history) const;
    void save(History* history) const;

private:
    std::string path_; ///< empty for none
};

} // namespace orvane::shell
