#include "host/providers/reading/RowSource.h"

#include "host/providers/reading/SampleReader.h"

namespace orvane::files {

RowSource::~RowSource() = default;

std::optional<std::vector<std::int64_t>> RowSource::rowsIn(const geometry::Envelope&, std::size_t) {
    return std::nullopt;
}

std::optional<RowSource::Filter> RowSource::filterOf(const std::vector<Test>&,
                                                     const std::optional<geometry::Envelope>&) {
    return std::nullopt;
}

std::unique_ptr<BatchReader> RowSource::sample(const std::vector<int>& attributes, std::int64_t rows) {
    return std::make_unique<FirstRowReader>(scan(attributes, rows));
}

} // namespace orvane::files
