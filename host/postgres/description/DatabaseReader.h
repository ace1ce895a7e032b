#pragma once

#include "host/postgres/connection/Server.h"
#include "host/postgres/description/TableDescription.h"

#include <QString>

#include <vector>

namespace orvane::postgres {

/// Tables, views and materialised views that the user may read, as the server orders their names, first those
/// of the current schema: all but the system's own and those that extensions brought along, or with a name
/// ("table" or "schema.table", as the database writes it or in any letter case) just that one, whatever it
/// is. Throws ServerError.
std::vector<TableDescription> readDatabase(Server& server, const QString& wantedTable);

} // namespace orvane::postgres
