#pragma once

#include "host/shell/messages/Names.h"
#include "host/shell/prompt/LineEditor.h"

namespace orvane::shell {

/// What could stand in place of the word at the end of a statement begun: behind "t." the columns of t (of
/// all tables while t is unknown), else the columns of the tables named so far (of all, as long as there is
/// none), tables, functions and keywords, and at the beginning of a line the commands of the prompt. Names
/// that need quotation marks come with them.
Completion completeStatement(const std::string& statement, const Names& names);

/// The same for a first line, which may be a command of the prompt: its argument is completed to what the
/// command takes.
Completion completeLine(const std::string& line, const Names& names);

} // namespace orvane::shell
