#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace orvane::files {

/// Tells whether a file was written since the last look, by size and time of writing, the write-ahead log of
/// an SQLite file and the parts of a Shapefile included.
class FileStamp {
public:
    /// GDAL's path, UTF-8.
    explicit FileStamp(const QByteArray& path);

    /// True once after each change. Looks at the disk at most every tenth of a second, unless this process
    /// has written something itself.
    bool hasChanged();
    /// The same, but for a look at the disk in any case.
    bool hasChangedByNow();
    /// Size of the file and what belongs to it at the last look, in bytes.
    std::uint64_t size() const;
    /// Takes the file as it is now for known.
    void refresh();
    /// This process has written some file. Any thread.
    static void noteWrite();

private:
    struct Part {
        std::filesystem::path path;
        std::uint64_t size = 0;
        std::filesystem::file_time_type time{};
    };
    bool look();

    std::vector<Part> parts_;
    std::chrono::steady_clock::time_point nextLook_{};
    unsigned writesSeen_ = 0;
};

} // namespace orvane::files
