#pragma once

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace orvane::shell {

/// A stretch of a text, on one line of it.
struct TextPlace {
    int line = 1;   ///< from 1
    int column = 1; ///< from 1, in characters
    int length = 1; ///< in characters
};

/// Why a statement was not carried out, in one sentence for the user.
struct Problem {
    QString message;
    std::optional<TextPlace> place;
};

/// A text with statements: where it comes from is shown before the messages.
struct StatementText {
    QString origin;        ///< the path of a script, empty for the command line
    std::string_view text; ///< UTF-8, whole: places in it are shown with their line
};

/// The message in full, as printed on standard error: origin, line and column, and, below, the line of the
/// text with the place underlined. Long lines are cut around the place. In its visible form
/// (platform/utils/VisibleText.h), with the final line feed.
std::string describe(const Problem& problem, const StatementText& text);

/// The place in the whole text of a place in a statement that begins at `start`.
TextPlace placeInText(const TextPlace& place, const TextPlace& start);

} // namespace orvane::shell
