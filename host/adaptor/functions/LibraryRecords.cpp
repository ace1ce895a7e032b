#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> libraryRecords() {
    return {};
}

} // namespace orvane::adaptor
