#pragma once

#include "platform/Export.h"

#include <cstdio>

namespace orvane::utils {

/// The descriptor of a new empty file, to be read and written, in the directory for temporary files. It has
/// no name, or loses it at once, so that nobody else can open it and it goes with the descriptor, however the
/// process ends. -1 with errno where none can be made. Any thread.
ORVANE_PLATFORM_EXPORT int openTemporaryFile();
/// The same as a stream; null with errno where none can be made.
ORVANE_PLATFORM_EXPORT std::FILE* openTemporaryStream();

} // namespace orvane::utils
