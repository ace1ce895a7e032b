#include "platform/dp/TemporaryFiles.h"

#include <QFile>
#include <QUuid>

#include <sqlite3.h>

#include <map>
#include <memory>
#include <mutex>

namespace orvane::dp {

namespace {

/// The default file system with another way to open nameless files. Its other methods find their state
/// through pAppData, which is copied, so they can be called through the copy.
struct DirectoryVfs : sqlite3_vfs {
    DirectoryVfs(sqlite3_vfs& base, const QString& where)
        : sqlite3_vfs(base), root(base), directory(QFile::encodeName(where)),
          name("orvane:" + directory.toStdString()) {
        zName = name.c_str();
        pNext = nullptr;
        xOpen = &DirectoryVfs::openFile;
    }

    static int openFile(sqlite3_vfs* vfs, sqlite3_filename fileName, sqlite3_file* file, int flags,
                        int* outFlags) {
        auto& self = *static_cast<DirectoryVfs*>(vfs);
        if (fileName) {
            return self.root.xOpen(&self.root, fileName, file, flags, outFlags);
        }
        // Named only until it is open: with DELETEONCLOSE the file has no name from then on.
        const QByteArray path =
            self.directory + "/orvane-" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
        return self.root.xOpen(&self.root, path.constData(), file, flags, outFlags);
    }

    sqlite3_vfs& root;
    QByteArray directory;
    std::string name;
};

} // namespace

std::string vfsWithTemporaryFilesIn(const QString& directory) {
    static std::mutex mutex;
    // Never destroyed: SQLite keeps the file systems in a list, which other libraries change at exit.
    static auto& registered = *new std::map<QString, std::unique_ptr<DirectoryVfs>>;
    const std::lock_guard lock(mutex);
    std::unique_ptr<DirectoryVfs>& vfs = registered[directory];
    if (!vfs) {
        sqlite3_vfs* base = sqlite3_vfs_find(nullptr);
        if (!base) {
            registered.erase(directory);
            return {};
        }
        vfs = std::make_unique<DirectoryVfs>(*base, directory);
        sqlite3_vfs_register(vfs.get(), 0);
    }
    return vfs->name;
}

} // namespace orvane::dp
