#include "host/providers/BatchCursor.h"

namespace orvane::files {

bool BatchCursor::next() {
    if (++row_ < batch_.rows)
        return true;
    row_ = 0;
    return reader_->next(batch_);
}

} // namespace orvane::files
