#include "host/providers/datasets/FileStamp.h"

#include "host/providers/datasets/Archive.h"

#include <QFileInfo>
#include <QString>

#include <atomic>

namespace orvane::files {

namespace {

constexpr auto lookInterval = std::chrono::milliseconds(100);

std::atomic<unsigned> writes{0};

} // namespace

FileStamp::FileStamp(const QByteArray& path) {
    const auto name = pathOnDisk(QString::fromUtf8(path));
    auto add = [this](const QString& part) {
        parts_.push_back({std::filesystem::path(part.toStdU16String()), 0, {}});
    };
    add(name);
    add(name + QStringLiteral("-wal"));
    if (QFileInfo(name).suffix().compare(QLatin1String("shp"), Qt::CaseInsensitive) == 0) {
        const bool isUpper = name.endsWith(QLatin1String("SHP"));
        add(name.left(name.size() - 3) + (isUpper ? QLatin1String("DBF") : QLatin1String("dbf")));
    }
    refresh();
}

bool FileStamp::hasChanged() {
    const auto now = std::chrono::steady_clock::now();
    if (const unsigned written = writes; written != writesSeen_) {
        writesSeen_ = written;
    } else if (now < nextLook_) {
        return false;
    }
    nextLook_ = now + lookInterval;
    return look();
}

bool FileStamp::hasChangedByNow() {
    nextLook_ = {};
    return hasChanged();
}

std::uint64_t FileStamp::size() const {
    std::uint64_t size = 0;
    for (const auto& part : parts_) {
        size += part.size;
    }
    return size;
}

void FileStamp::noteWrite() {
    ++writes;
}

void FileStamp::refresh() {
    look();
}

bool FileStamp::look() {
    bool hasChanged = false;
    for (auto& part : parts_) {
        std::error_code error;
        auto size = std::filesystem::file_size(part.path, error);
        auto time = std::filesystem::last_write_time(part.path, error);
        if (error) {
            size = 0;
        }
        // An absent part and an empty one are the same: readers of a database make empty logs and remove
        // them.
        if (size == 0) {
            time = {};
        }
        hasChanged = hasChanged || size != part.size || time != part.time;
        part.size = size;
        part.time = time;
    }
    return hasChanged;
}

} // namespace orvane::files
