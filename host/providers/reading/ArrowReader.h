#pragma once

#include "host/providers/reading/LayerScan.h"

#include <ogr_recordbatch.h>

namespace orvane::files {

/// Reads a layer through the driver's Arrow stream: the driver fills whole columns, nothing is copied.
class ArrowReader final : public BatchReader {
public:
    /// Whether the driver has such a stream of its own, and it gives the columns of the scan as they are.
    /// (The stream that GDAL makes of features for other drivers costs what features cost.)
    static bool suits(const LayerScan& scan);
    /// Takes the prepared scan over. Null, and the scan stays as it was, when the stream's layout is not as
    /// expected.
    static std::unique_ptr<ArrowReader> start(LayerScan& scan);

    ~ArrowReader() override;
    bool next(ColumnBatch& batch) override;

private:
    ArrowReader() = default;
    bool hasExpectedLayout(const LayerScan& scan);

    LayerScan scan_;
    ArrowArrayStream stream_{};
    std::uint64_t failures_ = 0;        ///< outside scopes, before the first batch
    std::vector<std::size_t> children_; ///< position in the stream of each column of the scan
};

} // namespace orvane::files
