#include "host/providers/reading/RowSource.h"

namespace orvane::files {

RowSource::~RowSource() = default;

std::optional<RowSource::Filter> RowSource::filterOf(const std::vector<Test>&,
                                                     const std::optional<geometry::Envelope>&) {
    return std::nullopt;
}

} // namespace orvane::files
