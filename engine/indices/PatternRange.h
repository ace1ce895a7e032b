#pragma once

#include <orvane/engine/EngineIndices.h>

#include <QCollator>
#include <QString>

namespace orvane::engine {

/// The texts that a Like or Glob pattern can match lie, in the order of the collator, from `lower`
/// (inclusive) to `upper` (exclusive). An empty text means that there is no such bound.
struct PatternRange {
    QString lower;
    QString upper;
};

/// The range of a pattern, for a collator that ignores letter case. Any operation but Like and Glob has no
/// bounds.
PatternRange patternRange(const QString& pattern, quint8 operation, const QCollator& collator);

} // namespace orvane::engine
