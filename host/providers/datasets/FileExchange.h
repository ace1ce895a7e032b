#pragma once

#include "host/providers/Export.h"

#include <QString>

#include <filesystem>
#include <vector>

namespace orvane::files {

/// Puts finished files in the places of others, on the same file system, so that all of it can be taken back.
/// Every operation throws std::runtime_error with path and cause. Any thread.
class ORVANE_FILES_EXPORT FileExchange {
public:
    /// What is replaced is kept in `backups`, an existing directory on that file system.
    explicit FileExchange(const QString& backups);

    /// A file of that name is replaced only where `overwrites` says so. The bytes are on the disk before.
    void put(const std::filesystem::path& finished, const std::filesystem::path& place, bool overwrites);
    /// Takes a file away.
    void remove(const std::filesystem::path& place);
    /// Restores what was there, as far as the file system allows.
    void undo() noexcept;

private:
    struct Step {
        std::filesystem::path place;
        std::filesystem::path backup; ///< empty where nothing was there
    };

    std::filesystem::path nextBackup() const;

    std::filesystem::path backups_;
    std::vector<Step> steps_;
};

} // namespace orvane::files
