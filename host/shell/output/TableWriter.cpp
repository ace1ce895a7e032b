#include "host/shell/output/TableWriter.h"

#include "host/shell/messages/DisplayWidth.h"

#include "platform/utils/VisibleText.h"

#include <algorithm>

namespace orvane::shell {

namespace {

constexpr std::size_t rowsForWidths = 1000;
constexpr int widestPadding = 100;
constexpr int narrowestColumn = 8;
constexpr std::string_view separator = " | ";
constexpr std::string_view ruleSeparator = "-+-";

/// Gives a text the form that is shown, and returns its width. One pass over plain ASCII.
int settleText(std::string& text) {
    bool isPlain = true;
    for (const char character : text) { // to the end: so the loop has no branch
        isPlain &= static_cast<unsigned char>(character - ' ') < 0x5F;
    }
    if (isPlain) {
        return static_cast<int>(text.size());
    }
    utils::makeVisible(text);
    return displayWidth(text);
}

} // namespace

TableWriter::TableWriter(const WriterSettings& settings, Output& output)
    : ResultWriter(output), header_(settings.header), nullText_(settings.nullText.value_or("NULL")),
      geometry_(settings.geometry), terminalWidth_(settings.terminalWidth) {}

void TableWriter::begin(const std::vector<std::string>& columns) {
    for (const std::string& name : columns) {
        Column& column = columns_.emplace_back();
        column.name = name;
        column.nameWidth = settleText(column.name);
    }
    current_.resize(columns.size());
}

void TableWriter::row(const ResultRow& row) {
    for (int column = 0; column < row.size(); ++column) {
        readCell(current_[static_cast<std::size_t>(column)], row.value(column));
    }
    if (settled_) {
        writeRow(current_.data());
        return;
    }
    kept_.insert(kept_.end(), current_.begin(), current_.end());
    if (kept_.size() >= rowsForWidths * current_.size()) {
        settleWidths();
    }
}

void TableWriter::end() {
    if (!settled_) {
        settleWidths();
    }
}

void TableWriter::readCell(Cell& cell, const ResultValue& value) const {
    cell.text.clear();
    cell.isNumber = value.kind == ResultValue::Integer || value.kind == ResultValue::Real;
    cell.isNull = value.kind == ResultValue::Null;
    appendShown(cell.text, value, geometry_, nullText_);
    cell.width = settleText(cell.text);
}

void TableWriter::settleWidths() {
    settled_ = true;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        Column& column = columns_[i];
        column.width = header_ ? column.nameWidth : 0;
        bool hasNumber = false;
        bool hasOther = false;
        for (std::size_t cell = i; cell < kept_.size(); cell += columns_.size()) {
            column.width = std::max(column.width, kept_[cell].width);
            hasNumber = hasNumber || kept_[cell].isNumber;
            hasOther = hasOther || !(kept_[cell].isNumber || kept_[cell].isNull);
        }
        column.isNumeric = hasNumber && !hasOther;
        if (terminalWidth_ == 0) {
            column.width = std::min(column.width, widestPadding);
        }
    }
    if (terminalWidth_ != 0) {
        fitIntoTerminal();
    }
    if (header_) {
        writeHeader();
    }
    for (std::size_t i = 0; i < kept_.size(); i += columns_.size()) {
        writeRow(&kept_[i]);
    }
    kept_.clear();
    kept_.shrink_to_fit();
}

/// Takes from the widest columns until the line fits, but leaves each a few places.
void TableWriter::fitIntoTerminal() {
    int excess = -terminalWidth_ - static_cast<int>(separator.size());
    for (const Column& column : columns_) {
        excess += column.width + static_cast<int>(separator.size());
    }
    while (excess > 0) {
        const auto widest =
            std::max_element(columns_.begin(), columns_.end(),
                             [](const Column& a, const Column& b) { return a.width < b.width; });
        int second = narrowestColumn;
        for (const Column& column : columns_) {
            if (&column != &*widest) {
                second = std::max(second, std::min(column.width, widest->width - 1));
            }
        }
        const int taken = std::min(excess, widest->width - second);
        if (taken <= 0) {
            return;
        }
        widest->width -= taken;
        excess -= taken;
    }
}

void TableWriter::writeHeader() {
    std::string& text = output_.text();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i != 0) {
            text += separator;
        }
        const Column& column = columns_[i];
        writeCell({column.name, column.nameWidth, column.isNumeric}, column, i + 1 == columns_.size());
    }
    text += '\n';
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i != 0) {
            text += ruleSeparator;
        }
        text.append(static_cast<std::size_t>(columns_[i].width), '-');
    }
    text += '\n';
    output_.rowDone();
}

void TableWriter::writeRow(const Cell* cells) {
    std::string& text = output_.text();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i != 0) {
            text += separator;
        }
        writeCell(cells[i], columns_[i], i + 1 == columns_.size());
    }
    text += '\n';
    output_.rowDone();
}

void TableWriter::writeCell(const Cell& cell, const Column& column, bool isLast) {
    std::string& text = output_.text();
    if (terminalWidth_ != 0 && cell.width > column.width && column.width > 0) {
        const std::string_view shown =
            std::string_view(cell.text).substr(0, prefixOfWidth(cell.text, column.width - 1));
        text += shown;
        text += "…";
        text.append(static_cast<std::size_t>(column.width - 1 - displayWidth(shown)), ' ');
        return;
    }
    const auto padding = static_cast<std::size_t>(std::max(0, column.width - cell.width));
    const bool toTheRight = cell.isNumber || (cell.isNull && column.isNumeric);
    if (toTheRight) {
        text.append(padding, ' ');
    }
    text += cell.text;
    if (!toTheRight && !isLast) {
        text.append(padding, ' ');
    }
}

} // namespace orvane::shell
