#include "host/providers/ColumnBatch.h"

namespace orvane::files {

BatchReader::~BatchReader() = default;

} // namespace orvane::files
