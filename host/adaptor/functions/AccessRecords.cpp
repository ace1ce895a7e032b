#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> accessRecords() {
    return {};
}

} // namespace orvane::adaptor
