#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> overlayRecords() {
    return {};
}

} // namespace orvane::adaptor
