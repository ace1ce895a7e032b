#pragma once

#include "host/shell/statements/StatementRunner.h"

namespace orvane::shell {

/// The interactive side of the program: reads statements and commands from the terminal until the user
/// leaves. A statement ends with a semicolon or an empty line and may take several lines. A failed or
/// cancelled one does not end the session.
void runPrompt(Session& session, StatementRunner& runner, Output& output, Interrupt& interrupt);

} // namespace orvane::shell
