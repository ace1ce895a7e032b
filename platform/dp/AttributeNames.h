#pragma once

#include "platform/Export.h"

#include <QStringList>

#include <cstddef>
#include <string_view>

namespace orvane::dp {

/// Names that SQL can tell apart: surrounding blanks and control characters are removed, an empty name
/// becomes "field" and its position from 1, and a name that was there before (letter case ignored) gets the
/// smallest number from 2 that makes it new after "_": "name", "name_2". The names that queries use for
/// something else (obj, object, style, rowid, ...) count as taken, so that a field "Style" is reached as
/// "Style_2". None takes more than `mostBytes` in UTF-8, unless that is 0: the ends of longer ones are cut
/// off.
ORVANE_PLATFORM_EXPORT QStringList distinctNames(const QStringList& names, int mostBytes = 0);

/// How many bytes of a text in UTF-8 fit where there is room for `mostBytes`, without half a character.
ORVANE_PLATFORM_EXPORT std::size_t bytesThatFit(std::string_view text, int mostBytes);

} // namespace orvane::dp
