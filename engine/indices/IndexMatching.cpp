#include "engine/indices/IndexMatching.h"

#include <algorithm>

namespace orvane::engine {

using Column = EngineIndices::Column;

bool isEquality(quint8 operation) {
    return operation == EngineIndices::Equal || operation == EngineIndices::Is;
}

std::vector<Column> normalizedColumns(const std::vector<Column>& columns, int numAttributes) {
    std::vector<Column> normalized;
    normalized.reserve(columns.size());
    for (const Column& column : columns) {
        if (column.attribute >= static_cast<quint32>(numAttributes) ||
            column.operation < EngineIndices::Equal || column.operation > EngineIndices::Glob) {
            continue;
        }
        const auto earlier =
            std::find_if(normalized.begin(), normalized.end(),
                         [&column](const Column& other) { return other.attribute == column.attribute; });
        if (earlier == normalized.end()) {
            normalized.push_back(column);
        } else {
            earlier->operation = std::min(earlier->operation, column.operation);
        }
    }
    std::stable_partition(normalized.begin(), normalized.end(),
                          [](const Column& column) { return isEquality(column.operation); });
    return normalized;
}

EngineIndices::Conformance matchIndex(const IndexColumns& index, const std::vector<Column>& normalized) {
    const auto firstOther = std::find_if(normalized.begin(), normalized.end(),
                                         [](const Column& column) { return !isEquality(column.operation); });
    const auto holds = [](auto begin, auto end, qint32 attribute) {
        return std::any_of(begin, end, [attribute](const Column& column) {
            return column.attribute == static_cast<quint32>(attribute);
        });
    };
    const auto equalities = firstOther - normalized.begin();
    const auto wanted = equalities + (firstOther == normalized.end() ? 0 : 1);
    std::ptrdiff_t matched = 0;
    while (matched < equalities && matched < index.size() &&
           holds(normalized.begin(), firstOther, index[static_cast<int>(matched)])) {
        ++matched;
    }
    if (matched == equalities && !index.isEmpty() && holds(firstOther, normalized.end(), index.last())) {
        ++matched;
    }
    if (matched == 0 && wanted > 0) {
        return {};
    }
    // Where nothing is wanted every index serves.
    const double score = matched == wanted ? 1.0 : static_cast<double>(matched) / static_cast<double>(wanted);
    return {score, equalities == wanted};
}

} // namespace orvane::engine
