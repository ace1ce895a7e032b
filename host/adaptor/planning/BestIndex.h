#pragma once

#include <sqlite3.h>

namespace orvane::adaptor {

class VirtualTable;

/// Decides which constraints a scan of the table takes over, and what it costs (xBestIndex): writes the plan
/// into idxStr. False where the scan cannot be made with the constraints that are usable. Throws
/// std::runtime_error when the table was closed, std::bad_alloc.
bool planScan(VirtualTable& table, sqlite3_index_info& info);

} // namespace orvane::adaptor
