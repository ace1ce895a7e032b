#pragma once

#include <QtGlobal>

namespace orvane::engine {

/// What is known of the rows of one attribute index. NULL counts as a value like any other.
struct IndexStatistics {
    enum Known : quint32 { Rows = 1, LargestGroup = 2, SmallestGroup = 4 };

    quint32 known = 0;       ///< which of the fields below are set
    qint64 rows = 0;         ///< number of rows
    qint64 largestGroup = 0; ///< the largest number of rows that share one combination of values
    qint64 smallestGroup = 0;
};

} // namespace orvane::engine
