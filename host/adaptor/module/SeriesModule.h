#pragma once

struct sqlite3;

namespace orvane::adaptor {

/// Registers the table `Generate_Series(first, last [, step])`, whose column `value` counts from one argument
/// to the other: whole numbers, reals, or dates. Returns SQLite's code.
int registerSeries(sqlite3* database);

} // namespace orvane::adaptor
