#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> formRecords() {
    return {};
}

} // namespace orvane::adaptor
