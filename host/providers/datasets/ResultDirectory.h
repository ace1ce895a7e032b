#pragma once

#include "host/providers/Export.h"

#include <QTemporaryDir>

#include <memory>
#include <mutex>

namespace orvane::files {

/// A new directory for a result that is not finished, removed with the object. While the process lives it
/// holds a lock on the directory; whoever makes the next one in the same place removes those that killed
/// processes left there. Only directories that bear our mark are looked at. Any thread.
class ORVANE_FILES_EXPORT ResultDirectory {
public:
    /// A hidden one beside a file to come, on the same file system.
    static std::shared_ptr<ResultDirectory> beside(const QString& path);
    /// One among the temporary files.
    static std::shared_ptr<ResultDirectory> temporary();

    ~ResultDirectory();
    ResultDirectory(const ResultDirectory&) = delete;
    ResultDirectory& operator=(const ResultDirectory&) = delete;

    /// Leaves the directory to the user, for what is in it is nowhere else.
    void keep();
    /// While it lives, removeResultDirectories() waits.
    static std::unique_lock<std::recursive_mutex> keepAll();

    QString path() const { return directory_.path(); }
    QString filePath(const QString& name) const { return directory_.filePath(name); }

private:
    /// Throws std::runtime_error with the cause.
    explicit ResultDirectory(const QString& pathTemplate);

    QTemporaryDir directory_;
    int lock_ = -1;
};

/// Removes every such directory of this process, for one that has to end without clean-up. Any thread.
ORVANE_FILES_EXPORT void removeResultDirectories();

} // namespace orvane::files
