#pragma once

#include <orvane/engine/EngineIndices.h>

#include <QVarLengthArray>

namespace orvane::engine {

/// The attributes of an index, in index order.
using IndexColumns = QVarLengthArray<qint32, 32>;

/// Whether the comparison is one with a single value: Equal or Is.
bool isEquality(quint8 operation);

/// The columns as indices see them: only attributes below `numAttributes` with a valid operation, each once
/// (with the smallest of its codes, in the place of its first), those with an equality before all others.
std::vector<EngineIndices::Column> normalizedColumns(const std::vector<EngineIndices::Column>& columns,
                                                     int numAttributes);

/// How well an index serves a normalized list: the leading run of its columns that the list has equalities
/// for, and one more when that run covers all of them and the index ends with another column of the list, in
/// relation to what the best index could reach.
EngineIndices::Conformance matchIndex(const IndexColumns& index,
                                      const std::vector<EngineIndices::Column>& normalized);

} // namespace orvane::engine
