#include "host/shell/messages/Problem.h"

#include "host/shell/messages/DisplayWidth.h"
#include "host/shell/messages/Shell.h"

#include "platform/utils/Utf8.h"
#include "platform/utils/VisibleText.h"

#include <algorithm>

namespace orvane::shell {

namespace {

constexpr int shownWidth = 100;
constexpr std::string_view indentation = "  ";

std::string_view lineOf(std::string_view text, int number) {
    for (; number > 1; --number) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) {
            return {};
        }
        text.remove_prefix(end + 1);
    }
    text = text.substr(0, text.find('\n'));
    if (!text.empty() && text.back() == '\r') {
        text.remove_suffix(1);
    }
    return text;
}

std::size_t offsetOfCharacter(std::string_view text, int character) {
    std::size_t offset = 0;
    while (character-- > 0 && offset < text.size()) {
        utf8::nextCharacter(text, offset);
    }
    return offset;
}

/// As it is shown; tabulators, with which people indent, as blanks.
std::string shownPart(std::string_view part) {
    std::string shown(part);
    std::replace(shown.begin(), shown.end(), '\t', ' ');
    utils::makeVisible(shown);
    return shown;
}

std::string shortened(std::string text, int columns) {
    if (displayWidth(text) <= columns) {
        return text;
    }
    return text.substr(0, prefixOfWidth(text, columns)) + "…";
}

/// The line and the mark below it.
std::string underlined(std::string_view line, const TextPlace& place) {
    const std::size_t start = offsetOfCharacter(line, place.column - 1);
    const std::size_t end = start + offsetOfCharacter(line.substr(start), place.length);
    std::string before = shownPart(line.substr(0, start));
    std::string marked = shownPart(line.substr(start, end - start));
    std::string after = shownPart(line.substr(end));
    if (displayWidth(before + marked + after) > shownWidth) {
        // The place stays in sight with what surrounds it.
        constexpr int half = shownWidth / 2;
        if (const int excess = displayWidth(before) - half; excess > 0) {
            before = "…" + before.substr(prefixOfWidth(before, excess));
        }
        marked = shortened(std::move(marked), half);
        after = shortened(std::move(after), std::max(shownWidth - displayWidth(before + marked), 10));
    }

    std::string shown(indentation);
    shown += before + marked + after + '\n';
    shown += indentation;
    shown.append(static_cast<std::size_t>(displayWidth(before)), ' ');
    shown.append(static_cast<std::size_t>(std::max(displayWidth(marked), 1)), '^');
    return shown + '\n';
}

} // namespace

std::string describe(const Problem& problem, const StatementText& text) {
    QString head = QStringLiteral("orvane: ");
    if (!text.origin.isEmpty()) {
        head += text.origin + QStringLiteral(": ");
    }
    if (!problem.place) {
        return utils::visibleText((head + problem.message).toStdString()) + '\n';
    }
    head += Shell::tr("строка %0, столбец %1: %2")
                .arg(QString::number(problem.place->line), QString::number(problem.place->column),
                     problem.message);
    return utils::visibleText(head.toStdString()) + '\n' +
           underlined(lineOf(text.text, problem.place->line), *problem.place);
}

TextPlace placeInText(const TextPlace& place, const TextPlace& start) {
    return {start.line + place.line - 1, place.line == 1 ? start.column + place.column - 1 : place.column,
            place.length};
}

} // namespace orvane::shell
