#pragma once

#include <QString>

namespace orvane::dp {
class SqliteDatabaseAccess;
}

namespace orvane::engine {

/// Makes a new storage file, empty and for its owner alone, and returns its path: a braced UUID without
/// extension, in the directory of the setting IndexDirectory or, when that is not set or does not exist, in
/// the temporary directory. When a process asks for the first time, the files that killed processes left in
/// that directory are removed. Throws std::runtime_error.
QString makeStorageFile();

/// Marks a new database as a storage file of a living process: our application id in its header, and a lock
/// that is held until it is closed. Both are there at the same moment for other processes.
void claimStorage(dp::SqliteDatabaseAccess& database);

/// Removes the storage files in a directory that no process holds. A file counts as ours when it belongs to
/// the user, its name is a braced UUID and its header has our application id, or it has been empty for a
/// minute; others are neither changed nor removed, and no link is followed.
/// Only to be called while this process holds no storage file there: reading a file's header would let go of
/// its lock.
void removeAbandonedStorages(const QString& directory);

} // namespace orvane::engine
