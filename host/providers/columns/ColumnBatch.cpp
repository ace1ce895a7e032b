#include "host/providers/columns/ColumnBatch.h"

#include "platform/geometry/forms/GeometryFactory.h"

namespace orvane::files {

BatchReader::~BatchReader() = default;

std::shared_ptr<const BatchBoxes> boxesOf(const ColumnChunk& geometries, std::int64_t rows) {
    auto boxes = std::make_shared<BatchBoxes>();
    boxes->rows.reserve(static_cast<std::size_t>(rows));
    for (std::int64_t row = 0; row < rows; ++row) {
        boxes->rows.push_back(
            geometries.isNull(row)
                ? geometry::Envelope()
                : geometry::envelopeOfWkb(geometries.view(row)).value_or(geometry::Envelope::everything()));
        boxes->hull.add(boxes->rows.back());
    }
    return boxes;
}

} // namespace orvane::files
