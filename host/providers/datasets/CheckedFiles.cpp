#include "host/providers/datasets/CheckedFiles.h"

#include <QFileInfo>

#include <cpl_error.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>

namespace orvane::files {

namespace {

// Without a slash at its end: what stands behind it is a path then, which GDAL 3.6 removes without asking us.
constexpr char prefix[] = "/vsiorvane";

/// A file, and the first failure to write it. That is told again at the end, for drivers that do not look
/// write on, and whoever looks at the end must learn of it.
struct File {
    VSILFILE* handle;
    bool isWritten; ///< opened for writing too
    int failure = 0;

    void report() const {
        if (failure != 0) {
            CPLError(CE_Failure, CPLE_FileIO, "%s", std::strerror(failure));
        }
    }
    int checked(int result) {
        if (result != 0 && isWritten && failure == 0) {
            failure = errno;
            report();
        }
        return result;
    }
};

File& fileOf(void* file) {
    return *static_cast<File*>(file);
}

void* open(void*, const char* path, const char* access) {
    VSILFILE* const handle = VSIFOpenL(path, access);
    return handle ? new File{handle, std::strpbrk(access, "wa+") != nullptr} : nullptr;
}

size_t write(void* file, const void* bytes, size_t size, size_t count) {
    errno = ENOSPC; // where the system gives no reason
    const size_t written = VSIFWriteL(bytes, size, count, fileOf(file).handle);
    fileOf(file).checked(written == count ? 0 : -1);
    return written;
}

int close(void* file) {
    errno = ENOSPC;
    const std::unique_ptr<File> closed(&fileOf(file));
    closed->report();
    return closed->checked(VSIFCloseL(closed->handle));
}

void install() {
    auto* const callbacks = VSIAllocFilesystemPluginCallbacksStruct();
    callbacks->open = open;
    callbacks->write = write;
    callbacks->close = close;
    callbacks->stat = [](void*, const char* path, VSIStatBufL* status, int flags) {
        return VSIStatExL(path, status, flags);
    };
    callbacks->unlink = [](void*, const char* path) { return VSIUnlink(path); };
    callbacks->rename = [](void*, const char* from, const char* to) { return VSIRename(from, to); };
    callbacks->mkdir = [](void*, const char* path, long mode) { return VSIMkdir(path, mode); };
    callbacks->rmdir = [](void*, const char* path) { return VSIRmdir(path); };
    callbacks->read_dir = [](void*, const char* path, int most) { return VSIReadDirEx(path, most); };
    callbacks->tell = [](void* file) { return VSIFTellL(fileOf(file).handle); };
    callbacks->seek = [](void* file, vsi_l_offset offset, int origin) {
        return fileOf(file).checked(VSIFSeekL(fileOf(file).handle, offset, origin));
    };
    callbacks->read = [](void* file, void* buffer, size_t size, size_t count) {
        return VSIFReadL(buffer, size, count, fileOf(file).handle);
    };
    callbacks->eof = [](void* file) { return VSIFEofL(fileOf(file).handle); };
    callbacks->flush = [](void* file) { return fileOf(file).checked(VSIFFlushL(fileOf(file).handle)); };
    callbacks->truncate = [](void* file, vsi_l_offset size) {
        return fileOf(file).checked(VSIFTruncateL(fileOf(file).handle, size));
    };
    VSIInstallPluginHandler(prefix, callbacks);
    VSIFreeFilesystemPluginCallbacksStruct(callbacks);
}

} // namespace

QByteArray checkedPath(const QString& path) {
    static std::once_flag once;
    std::call_once(once, install);
    return prefix + QFileInfo(path).absoluteFilePath().toUtf8();
}

TemporaryFilesBeside::TemporaryFilesBeside(const QString& path)
    : directory_("CPL_TMPDIR", checkedPath(QFileInfo(path).absolutePath()).constData()) {}

QString withoutCheckedPrefix(QString text) {
    return text.remove(QLatin1String(prefix));
}

} // namespace orvane::files
