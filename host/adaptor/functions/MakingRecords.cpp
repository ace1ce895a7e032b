#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> makingRecords() {
    return {};
}

} // namespace orvane::adaptor
