#pragma once

#include "host/providers/Export.h"

#include <QString>

#include <memory>
#include <mutex>
#include <string>

namespace orvane::files {

/// A new directory for files that are not finished, for nobody but its owner, removed with the object. While
/// the process lives it holds a lock on the directory; whoever makes the next one in the same place removes
/// those that killed processes of the same user left there. Only directories that bear our mark are looked
/// at. Any thread.
class ORVANE_FILES_EXPORT ResultDirectory {
public:
    /// A hidden one beside a file to come, on the same file system.
    static std::shared_ptr<ResultDirectory> beside(const QString& path);
    /// One among the temporary files, which are in `parent` or else where the system has them.
    static std::shared_ptr<ResultDirectory> temporary(const QString& parent = {});

    ~ResultDirectory();
    ResultDirectory(const ResultDirectory&) = delete;
    ResultDirectory& operator=(const ResultDirectory&) = delete;

    /// Leaves the directory to the user, for what is in it is nowhere else.
    void keep();
    /// While it lives, removeResultDirectories() waits.
    static std::unique_lock<std::recursive_mutex> keepAll();

    QString path() const;
    QString filePath(const QString& name) const;

private:
    /// Throws std::runtime_error with the cause.
    ResultDirectory(const QString& parent, const std::string& start);
    bool claim();
    void remove() noexcept;

    std::string path_;
    int lock_ = -1;
    bool isKept_ = false;
};

/// Removes every such directory of this process, for one that has to end without clean-up. Any thread.
ORVANE_FILES_EXPORT void removeResultDirectories();

} // namespace orvane::files
