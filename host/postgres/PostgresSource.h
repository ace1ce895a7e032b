#pragma once

#include "host/postgres/PostgresTable.h"

#include <QString>

#include <memory>
#include <vector>

namespace orvane::postgres {

/// Whether a source names a database of PostgreSQL's: "postgresql://...", "postgres://...", "PG:...".
ORVANE_POSTGRES_EXPORT bool isServerSource(const QString& source);

/// What may be shown of a source: without user, password and options.
ORVANE_POSTGRES_EXPORT QString titleOfSource(const QString& source);

/// Opens the tables, views and materialised views of a database that the user may read, or with "|table" or
/// "|schema.table" behind the address that one. A table is named as in the database. User and password come
/// from the address and the places where libpq looks for them: PGUSER, PGPASSWORD, ~/.pgpass, the service
/// file.
///
/// Throws std::runtime_error with the reason, UTF-8, which never holds the password: the address cannot be
/// read, the server cannot be reached, no such table.
ORVANE_POSTGRES_EXPORT std::vector<std::shared_ptr<PostgresTable>> openServer(const QString& source);

} // namespace orvane::postgres
