#pragma once

#include <orvane/engine/Export.h>

#include <QCollator>

namespace orvane::engine {

/// The collator behind the collation "Locale": the default locale's order, letter case ignored, punctuation
/// not.
ORVANE_ENGINE_EXPORT QCollator collator();

/// Compares two UTF-16 texts as SQLite hands them to a collation: lengths in bytes, native byte order.
/// Negative, zero or positive.
ORVANE_ENGINE_EXPORT int collatorCompare(const QCollator& collator, int length1, const void* text1,
                                         int length2, const void* text2);

} // namespace orvane::engine
