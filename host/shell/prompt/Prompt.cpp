#include "host/shell/prompt/Prompt.h"

#include "host/shell/messages/Shell.h"
#include "host/shell/prompt/LineEditor.h"
#include "host/shell/prompt/PromptCommands.h"
#include "host/shell/prompt/WordCompletion.h"
#include "host/shell/session/Interrupt.h"

#include "platform/sql/lexing/Script.h"

#include <cstdio>

namespace orvane::shell {

namespace {

/// Whether the lines read so far make a whole, so that they can run.
bool isComplete(const std::string& text, const std::string& lastLine) {
    const auto statements = sql::splitScript(text);
    return statements.empty() || statements.back().terminated ||
           lastLine.find_first_not_of(" \t") == std::string::npos;
}

/// A statement as the history keeps it: with its line breaks, so that a comment ends where it ended, without
/// the empty line that it may have ended with.
std::string historyEntry(const std::string& text) {
    const std::size_t last = text.find_last_not_of(" \t\n");
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

} // namespace

void runPrompt(Session& session, StatementRunner& runner, Output& output, Interrupt& interrupt) {
    const PatientWork patience(interrupt, Interrupt::Patience::Long);
    PromptCommands commands(session, runner, output);
    std::string text;
    LineEditor editor(interrupt, HistoryFile::standard(),
                      [&session, &text](const std::string& lineBeforeCursor) {
                          return text.empty() ? completeLine(lineBeforeCursor, session.names())
                                              : completeStatement(text + lineBeforeCursor, session.names());
                      });
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
        if (text.empty() && line.rfind('.', 0) == 0) {
            editor.remember(historyEntry(line));
            if (!commands.run(QString::fromStdString(line).trimmed())) {
                return;
            }
            continue;
        }
        text += line + '\n';
        if (!isComplete(text, line)) {
            continue;
        }
        editor.remember(historyEntry(text));
        runner.settings().writer.terminalWidth = terminalWidth(); // the user may have changed it
        runner.run({QString(), text});
        commands.setLast(text);
        interrupt.reset();
        text.clear();
    }
    std::fputc('\n', stdout);
}

} // namespace orvane::shell
