#pragma once

#include "host/providers/datasets/FileExchange.h"
#include "host/providers/datasets/ResultDirectory.h"

#include <QStringList>

#include <map>
#include <memory>

namespace orvane::files {

/// The files of a dataset, copied into a directory beside them to be changed there. Until the copies take
/// their places, the originals stay as they are. All operations throw std::runtime_error with path and cause.
/// Used from one thread.
class WorkingCopy {
public:
    /// `path` names the dataset, a file or a directory, and `files` all that belong to it.
    WorkingCopy(const QString& path, const QStringList& files);

    /// What `path` is among the copies.
    QString path() const;

    /// Remembers the copies as they are now, under a number; replaces what was remembered under it.
    void save(int savepoint);
    /// Makes the copies what they were then.
    void restore(int savepoint);

    /// Puts the copies that have changed in the places of the originals: all or none. Fails also where
    /// somebody else has changed an original meanwhile. Nobody may have a copy open.
    void publish();
    /// Takes that back.
    void unpublish() noexcept;

private:
    struct Stamp {
        std::uintmax_t size;
        std::filesystem::file_time_type time;
        bool operator==(const Stamp&) const = default;
    };
    using Stamps = std::map<std::filesystem::path, Stamp>; ///< by the path below a root

    static Stamps stampsBelow(const std::filesystem::path& root);
    static Stamp stampOf(const std::filesystem::path& file);
    std::filesystem::path savedRoot(int savepoint) const;

    std::shared_ptr<ResultDirectory> directory_;
    std::filesystem::path root_;    ///< of the originals
    std::filesystem::path copies_;  ///< the root of the copies
    std::filesystem::path dataset_; ///< below each root
    Stamps originals_, unchanged_;  ///< of the originals and the copies when these were made
    FileExchange exchange_;
};

} // namespace orvane::files
