#include "host/postgres/reading/CountingCursor.h"

namespace orvane::postgres {

dp::FeatureId CountingCursor::featureId() {
    if (!rowsRead_) {
        rowsRead_ = scan_();
    }
    for (; readRow_ < row_; ++readRow_) {
        if (!rowsRead_->next()) {
            return {};
        }
    }
    return rowsRead_->featureId();
}

} // namespace orvane::postgres
