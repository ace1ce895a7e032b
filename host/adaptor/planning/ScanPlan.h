#pragma once

#include "host/adaptor/indices/SpatialRelation.h"

#include "platform/dp/ScanRequest.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::adaptor {

/// What xBestIndex decides about one scan and xFilter carries out. Travels through SQLite as a text, so that
/// no state is kept between the two. Each item below takes one value of xFilter's arguments, in this order:
/// the terms, the row number, the relations, the origin of distances, the limit, the offset.
struct ScanPlan {
    struct Term {
        int column = 0; ///< position in the virtual table's declaration
        dp::Comparison comparison = dp::Comparison::Equal;
        dp::TextCollation collation = dp::TextCollation::Binary;
        bool operator==(const Term&) const = default;
    };
    /// Between the geometry column and a value; the column is the first operand, or the second.
    struct Relation {
        SpatialRelation relation = SpatialRelation::Intersects;
        bool isSecondOperand = false;
        bool isRepeated = false; ///< for the rows of another table

        /// The relation from the column to the value.
        SpatialRelation ofColumn() const { return isSecondOperand ? converseOf(relation) : relation; }
        /// Whether the coordinate system of the value counts where that of the column is another.
        bool countsElsewhere() const { return countsInFirstSystem(relation) == isSecondOperand; }
        bool operator==(const Relation&) const = default;
    };
    struct Order {
        int column = 0; ///< position in the virtual table's declaration
        bool isDescending = false;
        bool operator==(const Order&) const = default;
    };
    enum class Ordering : std::uint8_t {
        None,
        InMemory,   ///< the rows are read and put in order
        ByIndex,    ///< the same, or an attribute index delivers them in order if it is still there
        WantsIndex, ///< SQLite sorts, which an index would save; the scan is not ordered
    };
    enum class RowNumber : std::uint8_t {
        None,
        Equal,
        In,
        Other ///< SQLite compares the row numbers, without an argument; all rows need theirs first
    };

    enum class ByDistance : std::uint8_t {
        None,
        Looked,   ///< the nearest rows first, as the spatial index finds them
        Measured, ///< all rows that pass the terms, put in order
    };

    std::uint64_t number = 0;      ///< of what a ScanRecorder took down, 0 when there is none
    std::uint64_t columnsUsed = 0; ///< SQLite's mask: bit 63 stands for every column from 63 on
    std::vector<Term> terms;
    RowNumber rowNumber = RowNumber::None;
    std::vector<Relation> relations; ///< the first is looked up, the others are tested on each row
    ByDistance byDistance = ByDistance::None;
    Ordering ordering = Ordering::None;
    std::vector<Order> order; ///< first column first
    /// Position of the column that a table within this scan is compared with: an index on it would have let
    /// the other table come first. Negative where there is none, or several.
    int joined = -1;
    bool limit = false;
    bool offset = false;

    bool usesColumn(int column) const { return (columnsUsed >> (column < 63 ? column : 63)) & 1; }
    bool looksUpRowNumbers() const { return rowNumber == RowNumber::Equal || rowNumber == RowNumber::In; }
    bool operator==(const ScanPlan&) const = default;

    std::string toText() const;
    /// Reads what toText wrote.
    static ScanPlan fromText(std::string_view text);
};

} // namespace orvane::adaptor
