#pragma once

#include "host/providers/reading/LayerScan.h"

#include <atomic>

namespace orvane::files {

/// Reads a layer feature by feature into batches: for drivers without a fast Arrow stream, for columns that
/// such a stream changes, and for single features.
class FeatureReader final : public BatchReader {
public:
    explicit FeatureReader(LayerScan scan);
    FeatureReader(LayerScan scan, std::vector<std::int64_t> ids);
    ~FeatureReader() override;

    bool next(ColumnBatch& batch) override;
    void stop() override { isStopped_ = true; }

private:
    FeatureHandle nextFeature(const GdalErrorScope& errors);

    LayerScan scan_;
    bool readsIds_ = false;
    std::vector<std::int64_t> ids_;
    std::size_t nextId_ = 0;
    bool isAtEnd_ = false;
    std::atomic<bool> isStopped_ = false;
};

} // namespace orvane::files
