#pragma once

#include <QCoreApplication>

#include <stdexcept>

namespace orvane::shell {

/// Context of the shell's texts in the translation files.
class Shell {
    Q_DECLARE_TR_FUNCTIONS(orvane::shell::Shell)
};

/// What the process answers with.
enum ExitStatus : int { Done = 0, StatementFailed = 1, WrongUse = 2, Interrupted = 130 };

/// The command line cannot be understood, or something it names cannot be opened. The text is UTF-8 for the
/// user.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

} // namespace orvane::shell
