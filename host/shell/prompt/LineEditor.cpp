#include "host/shell/prompt/LineEditor.h"

#include "host/shell/messages/DisplayWidth.h"
#include "host/shell/output/Output.h"
#include "host/shell/session/Interrupt.h"

#include "platform/utils/Utf8.h"
#include "platform/utils/VisibleText.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

constexpr int rememberedLines = 2000;
constexpr char endOfInput = 0x04; // Ctrl-D

/// What all candidates begin with, up to what a terminal would obey or not show: that gets into no line
/// unseen.
std::string commonStart(const std::vector<std::string>& candidates) {
    std::string start = candidates.front();
    for (const std::string& candidate : candidates) {
        const auto difference = std::mismatch(start.begin(), start.end(), candidate.begin(), candidate.end());
        start.erase(difference.first, start.end());
    }
    std::size_t end = 0;
    while (end < start.size()) {
        const utils::Sign sign = utils::signAt(start, end);
        if (!sign.isVisible) { // also a part of a character
            break;
        }
        end += sign.size;
    }
    return start.substr(0, end);
}

int charactersIn(const std::string& text) {
    int count = 0;
    for (std::size_t position = 0; position < text.size(); ++count) {
        utf8::nextCharacter(text, position);
    }
    return count;
}

} // namespace

LineEditor::LineEditor(Interrupt& interrupt, HistoryFile historyFile, Complete complete)
    : interrupt_(interrupt), historyFile_(std::move(historyFile)), complete_(std::move(complete)),
      history_(history_init()), edit_(el_init("orvane", stdin, stdout, stderr)) {
    EditLine* const edit = edit_.get();
    el_set(edit, EL_CLIENTDATA, this);
    el_set(edit, EL_EDITOR, "emacs");
    el_set(edit, EL_PROMPT, &promptOf);
    el_set(edit, EL_GETCFN, &readCharacter);
    el_set(edit, EL_HIST, history, history_.get());
    el_set(edit, EL_ADDFN, "complete", "Complete the word", &completeWord);
    el_set(edit, EL_BIND, "^I", "complete", nullptr);
    el_set(edit, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_source(edit, nullptr);
    HistEvent event;
    history(history_.get(), &event, H_SETSIZE, rememberedLines);
    history(history_.get(), &event, H_SETUNIQUE, 1);
    historyFile_.load(history_.get());
}

LineEditor::Event LineEditor::read(const std::string& prompt, std::string& line) {
    prompt_ = prompt;
    cancelled_ = false;
    // Before the prompt is seen: libedit does it after, and what is typed in between would be read as a
    // terminal in line mode reads it.
    el_set(edit_.get(), EL_PREP_TERM, 1);
    if (::ioctl(STDIN_FILENO, FIONREAD, &typedAhead_) != 0) {
        typedAhead_ = 0;
    }
    int length = 0;
    const char* const text = el_gets(edit_.get(), &length);
    if (cancelled_ && interrupt_.isFinal()) {
        return Event::End;
    }
    if (cancelled_) {
        std::fputs("^C\n", stdout);
        el_reset(edit_.get());
        return Event::Cancelled;
    }
    if (!text || length <= 0) {
        return Event::End;
    }
    line.assign(text, static_cast<std::size_t>(length));
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    return Event::Line;
}

void LineEditor::remember(const std::string& text) {
    if (text.empty()) {
        return;
    }
    HistEvent event;
    history(history_.get(), &event, H_ENTER, text.c_str());
    // At once: a terminal that is closed ends the program without a last word.
    historyFile_.save(history_.get());
}

LineEditor& LineEditor::self(EditLine* edit) {
    void* data = nullptr;
    el_get(edit, EL_CLIENTDATA, &data);
    return *static_cast<LineEditor*>(data);
}

char* LineEditor::promptOf(EditLine* edit) {
    return self(edit).prompt_.data();
}

/// Waits for the keyboard and for Ctrl-C, whose signal another thread takes.
int LineEditor::readCharacter(EditLine* edit, wchar_t* character) {
    LineEditor& editor = self(edit);
    std::mbstate_t state{};
    while (true) {
        pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {editor.interrupt_.descriptor(), POLLIN, 0}};
        if (::poll(sources, 2, -1) < 0) {
            if (errno == EINTR) {
                continue; // the terminal has another size
            }
            return -1;
        }
        if (sources[1].revents != 0) {
            editor.interrupt_.reset();
            editor.cancelled_ = true;
            return 0;
        }
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) <= 0) {
            return 0;
        }
        // A Ctrl-D that was typed while the terminal was in line mode has become a zero.
        if (editor.typedAhead_-- > 0 && byte == 0) {
            byte = endOfInput;
        }
        const std::size_t used = std::mbrtowc(character, &byte, 1, &state);
        if (used == static_cast<std::size_t>(-1)) {
            state = {}; // no UTF-8: left out
            continue;
        }
        if (used != static_cast<std::size_t>(-2)) {
            return 1;
        }
    }
}

unsigned char LineEditor::completeWord(EditLine* edit, int) {
    return self(edit).complete();
}

unsigned char LineEditor::complete() {
    const LineInfo* const info = el_line(edit_.get());
    const Completion completion = complete_(std::string(info->buffer, info->cursor));
    if (completion.candidates.empty()) {
        return CC_REFRESH_BEEP;
    }
    std::string text = commonStart(completion.candidates);
    const bool isWhole = completion.candidates.size() == 1 && text == completion.candidates.front();
    if (isWhole && text.back() != '/') { // a directory goes on
        text += ' ';
    }
    if (isWhole || charactersIn(text) > static_cast<int>(completion.wordLength)) {
        el_deletestr(edit_.get(), static_cast<int>(completion.wordLength));
        el_insertstr(edit_.get(), text.c_str());
        return CC_REFRESH;
    }
    listCandidates(completion.candidates);
    return CC_REDISPLAY;
}

/// In columns below the line.
void LineEditor::listCandidates(const std::vector<std::string>& candidates) const {
    constexpr std::size_t shownAtMost = 200;
    const int lineWidth = terminalWidth() > 0 ? terminalWidth() : 80;
    int width = 0;
    std::vector<std::string> shown;
    for (std::size_t i = 0; i < std::min(candidates.size(), shownAtMost); ++i) {
        shown.push_back(utils::visibleText(candidates[i]));
        width = std::max(width, displayWidth(shown.back()) + 2);
    }
    const auto perLine = static_cast<std::size_t>(std::max(1, lineWidth / width));
    std::string text = "\n";
    for (std::size_t i = 0; i < shown.size(); ++i) {
        text += shown[i];
        const bool endsLine = (i + 1) % perLine == 0;
        text.append(endsLine ? 0 : static_cast<std::size_t>(width - displayWidth(shown[i])), ' ');
        if (endsLine) {
            text += '\n';
        }
    }
    text += candidates.size() > shownAtMost ? "...\n" : "\n";
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

} // namespace orvane::shell
