#pragma once

#include <QString>

namespace orvane::shell {

/// Writes a line to standard error, in its visible form (platform/utils/VisibleText.h) whatever standard
/// error is. Any thread.
void printErrorLine(const QString& line);

/// The same with the name of the program before it.
void printMessage(const QString& message);

} // namespace orvane::shell
