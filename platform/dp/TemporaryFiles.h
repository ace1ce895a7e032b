#pragma once

#include <QString>

#include <string>

namespace orvane::dp {

/// The name of an SQLite file system, registered on first use and kept, that puts the nameless temporary
/// files of a connection (temporary tables, sorter runs) into that directory, where SQLite would take one for
/// the whole process. Everything else is the default file system's work. Empty, which means the default, when
/// SQLite has none to build on.
std::string vfsWithTemporaryFilesIn(const QString& directory);

} // namespace orvane::dp
