#pragma once

#include "host/desk/session/Tables.h"

#include <string>

namespace orvane::sql {
class SqlError;
}

namespace orvane::desk {

/// Why a statement was not carried out, for the user, and where in it the reason stands.
struct QueryFault {
    QString message;
    std::optional<TextPlace> place;
};

/// What the parser or the translation found.
QueryFault faultOf(const sql::SqlError& error, const std::string& statement);
/// What SQLite says about the translated statement. The place is that of the name it complains about.
QueryFault faultOf(const QString& sqliteMessage, const std::string& statement);
/// What the parser has against the text of a query, statement by statement; none where it is well formed.
/// Any thread.
std::optional<QueryFault> syntaxFault(const std::string& text);

/// The place in the whole text of a place in a statement that begins at `line` and `column` of it.
TextPlace shifted(TextPlace place, int line, int column);

} // namespace orvane::desk
