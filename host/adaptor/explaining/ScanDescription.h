#pragma once

#include "host/adaptor/explaining/ScanReport.h"

namespace orvane::adaptor {

/// A scan in words of the user's language: what answered the table and with how many rows, then a line for
/// every reason why it was not something better. `alias` is the table's name in the statement.
QStringList describe(const ScanReport& report, const QString& alias);

} // namespace orvane::adaptor
