#pragma once

class QString;

namespace orvane::files {

// Databases of SQLite's that other people made. A view, a trigger, a default, a generated column or a virtual
// table of theirs runs with all that is registered on the connection, and SQLite's authorizer is not asked
// about what stands in the definition of a table. So whatever reaches beyond the database is taken off the
// connection before the first statement looks into it: modules and functions that are not known to work on
// their arguments and the database alone, loading of extensions, attaching of other files.

/// From now on connections that this thread opens are ready for the statement below. Calls nest.
void beginConfiningDatabases();
void endConfiningDatabases();

/// The option of GDAL's drivers for the statements that a connection begins with; other drivers take no
/// notice.
extern const char sqlitePrelude[];
/// Confines the connection that runs it; fails on one that was opened otherwise.
extern const char confiningStatement[];

/// Whether GDAL's error is that a connection was not ready, because another thread closed one at that moment.
/// The next try will do.
bool saysUnconfined(const QString& error);

} // namespace orvane::files
