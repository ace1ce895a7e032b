#include "host/providers/reading/BatchCursor.h"

#include "host/providers/conditions/RowFilter.h"

namespace orvane::files {

bool BatchCursor::next() {
    if (filter_) {
        return nextSelected();
    }
    if (++row_ < batch_.rows) {
        return true;
    }
    row_ = 0;
    return nextBatch();
}

bool BatchCursor::nextSelected() {
    while (nextSelected_ == selected_.size()) {
        if (!nextBatch()) {
            return false;
        }
        filter_->select(batch_, selected_);
        nextSelected_ = 0;
    }
    row_ = selected_[nextSelected_++];
    return true;
}

} // namespace orvane::files
