#pragma once

#include "host/shell/prompt/PromptCommands.h"

#include <string>

namespace orvane::shell {

/// Runs texts of statements and commands: those of the prompt as those of scripts and of the command line.
/// Nothing given to the constructor is owned.
class Console {
public:
    Console(Session& session, StatementRunner& runner, Output& output)
        : runner_(runner), commands_(session, runner, output) {}

    /// Runs what a text holds in turn, up to the first that does not succeed, or that leaves.
    Outcome run(const StatementText& text);
    /// Runs a script of the user's; a message where that fails.
    Outcome readFile(const std::string& path);
    /// Whether the user wants to leave.
    bool isLeaving() const { return isLeaving_; }
    /// Whether a text that ends with this line makes a whole, so that it can run.
    static bool isComplete(const std::string& text, const std::string& lastLine);

private:
    Outcome runCommand(const QString& command);

    StatementRunner& runner_;
    PromptCommands commands_;
    bool isLeaving_ = false;
    std::size_t depth_ = 0; ///< of scripts that read others
};

/// The text of a script, "-" for standard input. Throws UsageError for one that cannot be read.
std::string readScript(const std::string& path);

} // namespace orvane::shell
