#pragma once

#include "host/desk/rows/RowStore.h"

#include <platform/dp/Table.h>

#include <memory>

namespace orvane::desk {

/// Reads identifier and geometry of every feature of a table, a portion at a time. Used from the thread of
/// the engine.
class LayerReading {
public:
    /// Throws std::runtime_error.
    explicit LayerReading(dp::Table& table);

    /// Reads on for some milliseconds; false at the end. Throws std::runtime_error.
    bool readOn();
    const std::shared_ptr<RowStore>& features() const { return features_; }

private:
    std::unique_ptr<dp::Cursor> cursor_;
    std::shared_ptr<RowStore> features_;
    int geometryIndex_;
};

} // namespace orvane::desk
