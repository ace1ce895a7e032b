#pragma once

#include <QString>

namespace orvane::files {

/// Takes back what a process that was killed has left half written in a file of SQLite's: who opens the file
/// for reading alone cannot. To be called before the file is opened; does nothing for other files. Throws
/// std::runtime_error with the reason. Any thread.
void rollBackDatabase(const QString& path);

} // namespace orvane::files
