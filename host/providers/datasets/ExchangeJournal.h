#pragma once

#include "host/providers/Export.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::files {

/// One file of an exchange of several: what stands in its place before and after.
struct ExchangeStep {
    std::filesystem::path place; ///< below the folder
    bool replaces = false;       ///< the file that was there is kept; false where none was
    // Of the file that is put there; it tells ours from one that somebody else has made.
    std::uint64_t size = 0;
    std::int64_t time = 0;

    void takeStamp(const std::filesystem::path& finished);
    bool hasStampOf(const std::filesystem::path& file) const;
};

/// How the files of a folder are exchanged for those of a directory below it, and back again.
struct ExchangePlan {
    std::filesystem::path folder;
    std::string directory; ///< a name in the folder
    std::vector<ExchangeStep> steps;

    std::filesystem::path placeOf(std::size_t step) const { return folder / steps[step].place; }
    /// Where the replaced file is kept.
    std::filesystem::path backupOf(std::size_t step) const;
    /// Takes a step back, if it was made. Throws std::runtime_error.
    void undo(std::size_t step) const;
};

/// Says in a folder that several of its files are being exchanged, from post() until withdraw(). While the
/// process lives it holds a lock on the journal. Used from one thread.
class ExchangeJournal {
public:
    ExchangeJournal() = default;
    ~ExchangeJournal();
    ExchangeJournal(const ExchangeJournal&) = delete;
    ExchangeJournal& operator=(const ExchangeJournal&) = delete;

    /// Waits for the end of another exchange in the folder. Throws std::runtime_error or work::Cancelled.
    void post(const ExchangePlan& plan);
    /// All files are the new ones, or the old ones again.
    void withdraw() noexcept;

private:
    std::filesystem::path posted_;
    int descriptor_ = -1; ///< holds the lock
};

/// To be called before files of the folder are opened: waits for the exchange that goes on there, or takes
/// back what a process that was killed has left half done. In a folder where everybody takes away only his
/// own files, as the one for temporary files, only the user's own journals count. Throws std::runtime_error
/// when that fails, and work::Cancelled. Any thread.
void settleExchange(const std::filesystem::path& folder);
/// For a file, a folder of files, or a file in such a folder.
ORVANE_FILES_EXPORT void settleExchangeAround(const std::string& path);

/// Names and contents that were changed in a directory are on the disk afterwards, as far as the system knows
/// how.
void writeToDisk(const std::filesystem::path& path);

} // namespace orvane::files
