#pragma once

#include "host/shell/prompt/HistoryFile.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvane::shell {

class Interrupt;

/// What could stand in place of the word before the cursor.
struct Completion {
    std::size_t wordLength = 0;          ///< of that word, in characters
    std::vector<std::string> candidates; ///< UTF-8
};

/// Reads lines from the terminal through libedit, with a history that is kept in a file. One at a time, on
/// one thread.
class LineEditor {
public:
    using Complete = std::function<Completion(const std::string& textBeforeCursor)>;
    enum class Event { Line, Cancelled, End };

    LineEditor(Interrupt& interrupt, HistoryFile historyFile, Complete complete);
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    /// The next line without its end; several lines where the user took them from the history. Ctrl-C cancels
    /// the line, Ctrl-D in an empty one ends the input.
    Event read(const std::string& prompt, std::string& line);
    /// Puts a text of one line or several into the history and its file, as one entry; an empty one is
    /// ignored.
    void remember(const std::string& text);

private:
    struct EditCloser {
        void operator()(EditLine* edit) const { el_end(edit); }
    };
    struct HistoryCloser {
        void operator()(History* history) const { history_end(history); }
    };

    static LineEditor& self(EditLine* edit);
    static char* promptOf(EditLine* edit);
    static int readCharacter(EditLine* edit, wchar_t* character);
    static unsigned char completeWord(EditLine* edit, int character);
    unsigned char complete();
    void listCandidates(const std::vector<std::string>& candidates) const;

    Interrupt& interrupt_;
    HistoryFile historyFile_;
    Complete complete_;
    std::string prompt_;
    bool cancelled_ = false;
    int typedAhead_ = 0; ///< bytes that were typed before the line was asked for
    std::unique_ptr<History, HistoryCloser> history_;
    std::unique_ptr<EditLine, EditCloser> edit_;
};

} // namespace orvane::shell
