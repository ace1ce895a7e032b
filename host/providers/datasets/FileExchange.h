#pragma once

#include "host/providers/Export.h"
#include "host/providers/datasets/ExchangeJournal.h"
#include "host/providers/datasets/ResultDirectory.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace orvane::files {

/// Puts finished files in the places of others, all or none: a failure is taken back at once, what a killed
/// process has left half done when somebody opens a file of that folder the next time. Operations throw
/// std::runtime_error with path and cause. Used from one thread.
class ORVANE_FILES_EXPORT FileExchange {
public:
    /// The places are in the folder that the directory is in, or below; what is replaced is kept in the
    /// directory.
    explicit FileExchange(std::shared_ptr<ResultDirectory> directory);
    ~FileExchange();

    /// Plans to put a file, which may replace another of that name only where `overwrites` says so. Owner and
    /// mode of what is replaced stay.
    void put(const std::filesystem::path& finished, const std::filesystem::path& place, bool overwrites);
    /// Plans to take a file away.
    void remove(const std::filesystem::path& place);
    /// Does what was planned. The bytes are on the disk before.
    void carryOut();
    /// Restores what was there, as far as the file system allows.
    void undo() noexcept;

private:
    void plan(std::filesystem::path finished, const std::filesystem::path& place, bool overwrites);
    void carryOut(std::size_t step);

    std::shared_ptr<ResultDirectory> directory_;
    ExchangePlan plan_;
    std::vector<std::filesystem::path> finished_; ///< for each step; empty where a file is taken away
    std::vector<bool> overwrites_;
    std::size_t done_ = 0;                     ///< steps, the last one perhaps only in part
    std::unique_ptr<ExchangeJournal> journal_; ///< null for a single file, which is exchanged in one go
};

} // namespace orvane::files
