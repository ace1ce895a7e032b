#pragma once

#include "host/providers/Export.h"
#include "platform/dp/Cursor.h"
#include "platform/geometry/shapes/Coordinates.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace orvane::files {

/// How the values of a column lie in memory. Text, Bytes and Wkb: 32-bit offsets (one more than rows) into
/// one block of bytes.
enum class ColumnKind : std::uint8_t { Int16, Int32, Int64, Double, Text, Bytes, Wkb };

/// The kind of values that a column delivers, whatever their width.
enum class ValueClass : std::uint8_t { Integer, Real, Text, Other };

/// The values of one column for the rows of one batch, in the layout of the Arrow C data interface. Shares
/// the memory with whoever else reads the batch; immutable.
struct ColumnChunk {
    ColumnKind kind = ColumnKind::Int64;
    std::int64_t first = 0;                 ///< position of row 0 in the buffers
    const std::uint8_t* validity = nullptr; ///< one bit per row, 0 for NULL; null when no row is NULL
    const void* values = nullptr;
    const char* data = nullptr; ///< the bytes that the offsets point into
    std::size_t bytes = 0;      ///< memory held
    std::shared_ptr<const void> owner;

    bool isNull(std::int64_t row) const { return validity && !bitAt(validity, first + row); }

    /// A number that is not a number is NULL, as everywhere in SQLite.
    dp::Cell cell(std::int64_t row) const {
        if (isNull(row)) {
            return {};
        }
        switch (kind) {
        case ColumnKind::Int16: return dp::Cell::ofInteger(number<std::int16_t>(row));
        case ColumnKind::Int32: return dp::Cell::ofInteger(number<std::int32_t>(row));
        case ColumnKind::Int64: return dp::Cell::ofInteger(number<std::int64_t>(row));
        case ColumnKind::Double: return real(number<double>(row));
        case ColumnKind::Text: return dp::Cell::ofText(view(row));
        case ColumnKind::Bytes: return dp::Cell::ofBytes(view(row));
        case ColumnKind::Wkb: return dp::Cell::ofWkb(view(row));
        }
        return {};
    }

    template<class T>
    T number(std::int64_t row) const {
        return static_cast<const T*>(values)[first + row];
    }

    std::string_view view(std::int64_t row) const {
        const auto* offsets = static_cast<const std::int32_t*>(values) + first + row;
        return {data + offsets[0], static_cast<std::size_t>(offsets[1] - offsets[0])};
    }

    static bool bitAt(const std::uint8_t* bits, std::int64_t position) {
        return (bits[position >> 3] >> (position & 7)) & 1;
    }

private:
    static dp::Cell real(double value) { return value == value ? dp::Cell::ofReal(value) : dp::Cell(); }
};

/// Bounding boxes of the geometries of a batch; everything where the bytes do not tell.
struct BatchBoxes {
    std::vector<geometry::Envelope> rows;
    geometry::Envelope hull;
};

/// Some consecutive rows of a table.
struct ColumnBatch {
    std::int64_t rows = 0;
    ColumnChunk fids;
    std::vector<ColumnChunk> columns;        ///< in the order in which the reader was asked for them
    std::shared_ptr<const BatchBoxes> boxes; ///< null where nobody asked for them
};

/// The boxes of a column of geometries.
std::shared_ptr<const BatchBoxes> boxesOf(const ColumnChunk& geometries, std::int64_t rows);

/// A source of batches. Used from one thread at a time, but for stop().
class ORVANE_FILES_EXPORT BatchReader {
public:
    BatchReader() = default;
    virtual ~BatchReader();
    BatchReader(const BatchReader&) = delete;
    BatchReader& operator=(const BatchReader&) = delete;

    /// Fills in the next batch, which has at least one row; false at the end. Throws std::runtime_error when
    /// the source cannot be read.
    virtual bool next(ColumnBatch& batch) = 0;
    /// Nothing more is wanted: the batch under way may end early. From any thread.
    virtual void stop() {}
};

/// Rows per batch: large enough that the work per batch vanishes, small enough that the first row comes soon.
constexpr std::int64_t rowsPerBatch = 8192;

} // namespace orvane::files
