#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> measureRecords() {
    return {};
}

} // namespace orvane::adaptor
