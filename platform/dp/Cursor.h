#pragma once

#include "platform/Export.h"
#include "platform/dp/FeatureId.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane::dp {

enum class CellType : std::uint8_t { Null, Integer, Real, Text, Bytes, Wkb };

/// One value of the current row, without a copy: what a cursor points at stays valid until the cursor moves.
/// Text is UTF-8; dates and times are texts "yyyy-MM-dd", "hh:mm:ss.zzz" and both joined by a blank;
/// booleans are the integers 0 and 1; geometries are well-known binary (ISO, either byte order).
class Cell {
public:
    Cell() = default;
    static Cell ofInteger(std::int64_t value) {
        Cell cell(CellType::Integer);
        cell.integer_ = value;
        return cell;
    }
    static Cell ofReal(double value) {
        Cell cell(CellType::Real);
        cell.real_ = value;
        return cell;
    }
    static Cell ofText(std::string_view utf8) { return {CellType::Text, utf8}; }
    static Cell ofBytes(std::string_view bytes) { return {CellType::Bytes, bytes}; }
    static Cell ofWkb(std::string_view wkb) { return {CellType::Wkb, wkb}; }

    CellType type() const { return type_; }
    bool isNull() const { return type_ == CellType::Null; }
    std::int64_t integer() const { return integer_; }
    double real() const { return real_; }
    /// The text or the bytes.
    std::string_view view() const { return {data_, size_}; }

private:
    explicit Cell(CellType type) : type_(type) {}
    Cell(CellType type, std::string_view view) : data_(view.data()), size_(view.size()), type_(type) {}

    union {
        std::int64_t integer_ = 0;
        double real_;
        const char* data_;
    };
    std::size_t size_ = 0;
    CellType type_ = CellType::Null;
};

/// Reads the rows of one scan, forward only. Starts before the first row. Not for use from two threads at
/// once. A cursor keeps alive what it reads from, also when the table is closed meanwhile.
class ORVANE_PLATFORM_EXPORT Cursor {
public:
    Cursor() = default;
    virtual ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    /// Moves to the next row; false at the end. Throws std::runtime_error when the source cannot be read.
    virtual bool next() = 0;

    /// The value of an attribute, by its position in the table's schema. Only attributes that the scan
    /// request names may be asked for.
    virtual Cell cell(int attribute) = 0;

    /// The identifier of the current row.
    virtual FeatureId featureId() = 0;
    /// The same where it is a 64-bit integer, for who takes many of them; a cursor may leave it out.
    virtual std::optional<std::int64_t> integerId() { return std::nullopt; }

    /// Whether an index of the source's own finds the rows: for who wants to know how a query is answered.
    virtual bool isLookedUp() const { return false; }
};

/// Reads a sample of a table: runs of rows that follow each other in it, from all over it.
class ORVANE_PLATFORM_EXPORT SampleCursor : public Cursor {
public:
    /// Of the current row, ascending. What rows of one run have in common tells how the table is sorted, not
    /// how frequent it is.
    virtual std::int64_t run() const = 0;
};

} // namespace orvane::dp
