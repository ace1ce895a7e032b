#pragma once

#include <host/adaptor/Export.h>

#include <string>
#include <string_view>

struct sqlite3;

namespace orvane::adaptor {

/// The reference of all functions of a running engine as a Markdown text: those with records in full, those
/// of SQLite and SpatiaLite that the dialect knows by name.
ORVANE_ADAPTOR_EXPORT std::string functionReference(sqlite3* database);

/// Signature, summary and example of the function of that name, letter case ignored, under the name that the
/// dialect gives it; empty when no record has it.
ORVANE_ADAPTOR_EXPORT std::string functionHelp(std::string_view name);

} // namespace orvane::adaptor
