#include "host/providers/reading/CountingCursor.h"

namespace orvane::files {

bool CountingCursor::next() {
    if (++row_ < rows_) {
        return true;
    }
    reader_.reset(); // an open reader would keep others from writing
    return false;
}

dp::FeatureId CountingCursor::featureId() {
    if (!reader_) {
        reader_ = source_->scan({});
    }
    while (row_ >= firstOfBatch_ + batch_.rows) {
        firstOfBatch_ += batch_.rows;
        batch_.rows = 0;
        if (!reader_->next(batch_)) {
            return {}; // rows were removed meanwhile
        }
    }
    return dp::FeatureId(
        QVariant(static_cast<qlonglong>(batch_.fids.number<std::int64_t>(row_ - firstOfBatch_))));
}

} // namespace orvane::files
