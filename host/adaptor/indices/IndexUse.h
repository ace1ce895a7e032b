#pragma once

#include <cstdint>
#include <vector>

namespace orvane::adaptor {

/// What came of looking for the rows of a scan in the attribute indices, and why.
struct IndexUse {
    enum class Outcome : std::uint8_t {
        NotAsked, ///< the scan has no term for an index, or its rows were known without one
        Used,
        Comparison,   ///< an index does not answer this comparison
        ColumnType,   ///< nor this type of column
        Pattern,      ///< the pattern begins with nothing that an index could look up
        Collation,    ///< the texts are compared otherwise than an index orders them
        Operand,      ///< the operand is not of the column's kind
        SmallTable,   ///< a look-up would save nothing
        UnknownSize,  ///< the provider does not tell the number of rows
        ScansCheaper, ///< the scans so far cost less than making the index
        FindsMuch,    ///< so many rows are found that a scan is faster
        NoStorage,    ///< the storage could not be made
        SwitchedOff,  ///< by the host
    };

    Outcome outcome = Outcome::NotAsked;
    const std::vector<int>* attributes = nullptr; ///< of the index asked; valid until the table changes
    bool isMade = false;                          ///< for this scan
    double scanCost = 0;                          ///< of the scans so far, in nanoseconds
    double makingCost = 0;                        ///< expected, or measured when it was made, in nanoseconds
};

} // namespace orvane::adaptor
