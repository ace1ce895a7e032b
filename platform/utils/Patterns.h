#pragma once

#include "platform/Export.h"

#include <QString>

namespace orvane::utils {

/// A regular expression for a glob pattern: `*` any run, `?` one character, `[abc]`, `[a-z]`, `[^a-z]` one
/// character of a class (or not of it); a "]" that comes first in a class belongs to it. A class that is not
/// closed matches nothing, and so does a range whose end comes before its start.
///
/// The expression covers the whole text, line feeds included, counts characters (not code units), and never
/// goes back over a run that it has settled: a match takes at most the length of the text times that of the
/// pattern. The regular expression library gives up after ten million steps, without a match: longer texts
/// may not be found.
ORVANE_PLATFORM_EXPORT QString globToRegular(const QString& pattern);

/// The same for a LIKE pattern: `%` any run, `_` one character. `escape` makes the next character literal;
/// the null character stands for no escape. An escape at the end of the pattern makes it match nothing.
ORVANE_PLATFORM_EXPORT QString likeToRegular(const QString& pattern, QChar escape);

} // namespace orvane::utils
