#pragma once

#include "platform/geometry/shapes/Coordinates.h"

#include <QStringList>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::desk {

/// One value of a row. Text, bytes and well-known binary last as long as the block they are in.
struct Value {
    enum class Kind : std::uint8_t { Null, Integer, Real, Text, Bytes, Geometry };

    Kind kind = Kind::Null;
    std::int64_t integer = 0;
    double real = 0;
    std::string_view bytes{};
};

/// A rectangle around a geometry, not smaller than it; empty where there is none.
struct Box {
    float minX = 1;
    float minY = 1;
    float maxX = 0;
    float maxY = 0;

    static Box around(const geometry::Envelope& envelope);
    bool isEmpty() const { return !(minX <= maxX && minY <= maxY); }
    bool intersects(const geometry::Envelope& other) const {
        return (minX <= other.maxX) & (other.minX <= maxX) & (minY <= other.maxY) & (other.minY <= maxY);
    }
};

/// Some rows that follow each other. Never changes; any thread may read it.
class RowBlock {
public:
    ~RowBlock();
    RowBlock(const RowBlock&) = delete;
    RowBlock& operator=(const RowBlock&) = delete;

    /// The number of the first one among all rows.
    std::int64_t firstRow() const { return firstRow_; }
    int size() const { return static_cast<int>(offsets_.size()); }
    /// `row` counts from the first of the block.
    Value value(int row, int column) const;
    /// Of the geometry of a row.
    Box box(int row) const { return boxes_.empty() ? Box() : boxes_[static_cast<std::size_t>(row)]; }

private:
    friend class RowStore;
    RowBlock() = default;

    std::int64_t firstRow_ = 0;
    const char* data_ = nullptr; ///< mapped from the file
    std::size_t mappedSize_ = 0;
    std::vector<std::uint32_t> offsets_;
    std::vector<Box> boxes_; ///< empty where no row has a geometry
};

using RowBlocks = std::vector<std::shared_ptr<const RowBlock>>;

/// Rows of a result or of a layer while they come and afterwards. Their values are in a nameless temporary
/// file that is mapped block by block, so that the system keeps in memory what is looked at; of each row only
/// four bytes, and the sixteen of its box, are in memory of our own. One thread appends; any thread reads
/// what is published. Appending throws std::runtime_error when there is no room in the file.
class RowStore {
public:
    explicit RowStore(QStringList columns);
    ~RowStore();
    RowStore(const RowStore&) = delete;
    RowStore& operator=(const RowStore&) = delete;

    const QStringList& columns() const { return columns_; }

    // The thread that appends. The values of a row in their order, then endRow().
    void appendNull();
    void append(std::int64_t value);
    void append(double value);
    void appendText(std::string_view utf8);
    void appendBytes(std::string_view bytes);
    void appendGeometry(std::string_view wkb, const geometry::Envelope& envelope);
    void endRow();
    /// Shows the readers the rows so far. Full blocks are published by themselves.
    void publish();
    /// Of all geometries; known before the first one is published.
    void setCoordSystem(std::shared_ptr<cs::CoordSystem> system);

    // Any thread.
    std::int64_t rowCount() const;
    RowBlocks blocks() const;
    /// The block with that row; null beyond the end.
    std::shared_ptr<const RowBlock> blockOf(std::int64_t row) const;
    std::shared_ptr<cs::CoordSystem> coordSystem() const;
    /// The first column that has geometries, -1 as long as there are none.
    int geometryColumn() const;
    /// Around all geometries so far.
    geometry::Envelope envelope() const;

private:
    void appendBytes(Value::Kind kind, std::string_view bytes);
    void appendFixed(Value::Kind kind, const void* value);

    const QStringList columns_;
    int file_ = -1;
    std::int64_t fileSize_ = 0;

    // Of the block that is being filled.
    std::string buffer_;
    std::vector<std::uint32_t> offsets_;
    std::vector<Box> boxes_;
    std::size_t rowBegin_ = 0;
    int column_ = 0;
    Box box_;
    geometry::Envelope bufferEnvelope_;
    int bufferGeometryColumn_ = -1;

    mutable std::mutex mutex_; ///< guards what follows
    RowBlocks blocks_;
    std::int64_t rowCount_ = 0;
    std::shared_ptr<cs::CoordSystem> coordSystem_;
    geometry::Envelope envelope_;
    int geometryColumn_ = -1;
};

} // namespace orvane::desk
