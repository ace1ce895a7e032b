#pragma once

#include "platform/sql/tree/Node.h"

#include <QString>

namespace orvane::shell {

/// What the dialect calls a function that other databases know under the name; empty for a name of no other.
QString nameHere(const QString& nameElsewhere);

/// Whether a statement calls Round with a whole number of one digit: elsewhere that counts decimal places.
bool roundsAsElsewhere(const sql::ast::Node& statement);

} // namespace orvane::shell
