#include "host/adaptor/functions/ScalarRecord.h"

namespace orvane::adaptor {

std::span<const FunctionRecord> sqliteRecords() {
    return {};
}

} // namespace orvane::adaptor
