#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> editingRecords() {
    return {};
}

} // namespace orvane::adaptor
