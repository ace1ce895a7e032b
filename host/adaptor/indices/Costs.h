#pragma once

#include <cstdint>

/// What the ways to the rows of a table cost, in nanoseconds, measured on large tables in memory and in
/// files. Only their ratios decide: the order of the tables of a join, when an index or a copy in memory is
/// made. So the constants are the same on every machine, and plans can be compared.
namespace orvane::adaptor::cost {

/// Rows of a table whose size nobody knows.
constexpr std::int64_t assumedRows = 100'000;

/// Of a scan or a look-up, whatever it finds.
constexpr double opening = 2000;
/// Of a row that SQLite gets to see.
constexpr double handedRow = 100;
/// Of a row that is known by its identifier: finding it in an index, and fetching it alone.
constexpr double foundRow = 500;

/// Of a row that a scan leaves out by comparing a number or a text.
constexpr double numberTest = 2;
constexpr double textTest = 35;
/// Of a row that SQLite gets to see and leaves out by a pattern.
constexpr double patternTest = 200;
/// Of a row that is compared with the first ones in order.
constexpr double sortedRow = 100;

/// Of looking up in an index of the file, and of a row that comes from there by place: reading, decoding and
/// testing it.
constexpr double sourceLookup = 120'000;
constexpr double testedRow = 2000;
/// Of testing a relation between two geometries that are prepared for it, and between their envelopes.
constexpr double relation = 300;
constexpr double boxTest = 30;
/// Of a search in the R-tree: each time that its rows are halved.
constexpr double treeLevel = 150;
/// Of making the R-tree: each row, and each row of one in another coordinate system.
constexpr double treeRow = 400;
constexpr double transformedRow = 2500;

/// Of making an index: the storage, and each row by the kind of the column.
constexpr double storage = 1e6;
constexpr double indexedNumber = 700;
constexpr double indexedText = 2000;

/// Of keeping a row in memory: reading it, and each of its values; and of looking rows up there by a number
/// or a text.
constexpr double keptRow = 40;
constexpr double keptValue = 20;
constexpr double keptNumber = 150;
constexpr double keptText = 600;
/// Above this, keeping the rows anew for each statement costs more than an index does in the long run.
constexpr double mostRowsBeforeIndex = 200'000;

} // namespace orvane::adaptor::cost
