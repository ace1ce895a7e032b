#include "host/shell/prompt/Prompt.h"

#include "host/shell/messages/Shell.h"
#include "host/shell/prompt/Console.h"
#include "host/shell/prompt/LineEditor.h"
#include "host/shell/prompt/WordCompletion.h"
#include "host/shell/session/Interrupt.h"

#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cstdio>

namespace orvane::shell {

namespace {

/// Whether a command opens a database with a password in its address.
bool holdsPassword(const std::string& text) {
    static const QRegularExpression address(
        QStringLiteral(R"(\A\s*\..*(postgres(ql)?://[^\s/]*:[^\s]*@|(postgres|PG:).*password\s*=))"),
        QRegularExpression::CaseInsensitiveOption);
    return address.match(QString::fromStdString(text)).hasMatch();
}

/// A statement as the history keeps it: with its line breaks, so that a comment ends where it ended, without
/// the empty line that it may have ended with; nothing where it holds a password.
std::string historyEntry(const std::string& text) {
    if (holdsPassword(text)) {
        return {};
    }
    const std::size_t last = text.find_last_not_of(" \t\n");
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

/// What the user wants done before the first line.
QString startFile() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/orvane/orvanerc");
}

} // namespace

void runPrompt(Session& session, StatementRunner& runner, Output& output, Interrupt& interrupt) {
    const PatientWork patience(interrupt, Interrupt::Patience::Long);
    Console console(session, runner, output);
    std::string text;
    LineEditor editor(interrupt, HistoryFile::standard(),
                      [&session, &text](const std::string& lineBeforeCursor) {
                          return text.empty() ? completeLine(lineBeforeCursor, session.names())
                                              : completeStatement(text + lineBeforeCursor, session.names());
                      });
    if (const QString start = startFile(); QFile::exists(start)) {
        console.readFile(start.toStdString());
        if (console.isLeaving()) {
            return;
        }
    }
    std::printf("%s\n", Shell::tr("Команды показывает .help, выход: Ctrl-D").toUtf8().constData());
    std::string line;
    while (true) {
        const auto event = editor.read(text.empty() ? "orvane> " : "   ...> ", line);
        if (event != LineEditor::Event::Line) {
            editor.remember(historyEntry(text)); // what was typed so far can be taken up again
            text.clear();
            if (event == LineEditor::Event::End) {
                break;
            }
            continue;
        }
        text += line + '\n';
        if (!Console::isComplete(text, line)) {
            continue;
        }
        editor.remember(historyEntry(text));
        runner.settings().writer.terminalWidth = terminalWidth(); // the user may have changed it
        console.run({QString(), text});
        if (console.isLeaving()) {
            return;
        }
        interrupt.reset();
        text.clear();
    }
    std::fputc('\n', stdout);
}

} // namespace orvane::shell
