#pragma once

#include "platform/Export.h"
#include "platform/dp/Cursor.h"

struct sqlite3_context;
struct sqlite3_stmt;

namespace orvane::dp {

/// Makes a cell the result of a function or column. Texts and bytes are copied; well-known binary is bytes.
ORVANE_PLATFORM_EXPORT void setResult(sqlite3_context* context, const Cell& cell);

/// What becomes of texts and bytes that are bound.
enum class Binding { Copied, Viewed };

/// Binds a cell to a parameter, which counts from 1. Returns SQLite's code.
ORVANE_PLATFORM_EXPORT int bindCell(sqlite3_stmt* statement, int parameter, const Cell& cell,
                                    Binding binding);

} // namespace orvane::dp
