#include "host/shell/output/LineWriter.h"

#include "host/shell/messages/DisplayWidth.h"

#include "platform/utils/VisibleText.h"

#include <algorithm>

namespace orvane::shell {

LineWriter::LineWriter(const WriterSettings& settings, Output& output)
    : ResultWriter(output), nullText_(settings.nullText.value_or("NULL")), geometry_(settings.geometry) {}

void LineWriter::begin(const std::vector<std::string>& columns) {
    int width = 0;
    for (const std::string& column : columns) {
        width = std::max(width, displayWidth(names_.emplace_back(utils::visibleText(column))));
    }
    for (std::string& name : names_) {
        name.insert(0, static_cast<std::size_t>(width - displayWidth(name)), ' ');
    }
}

void LineWriter::row(const ResultRow& row) {
    std::string& text = output_.text();
    if (!isFirst_) {
        text += '\n';
    }
    isFirst_ = false;
    for (int column = 0; column < row.size(); ++column) {
        value_.clear();
        appendShown(value_, row.value(column), geometry_, nullText_);
        utils::makeVisible(value_);
        text += names_[static_cast<std::size_t>(column)];
        text += ": ";
        text += value_;
        text += '\n';
    }
    output_.rowDone();
}

MarkdownWriter::MarkdownWriter(const WriterSettings& settings, Output& output)
    : ResultWriter(output), nullText_(settings.nullText.value_or(std::string())),
      geometry_(settings.geometry) {}

void MarkdownWriter::begin(const std::vector<std::string>& columns) {
    names_ = columns;
}

/// Which columns are numbers the first row tells.
void MarkdownWriter::row(const ResultRow& row) {
    std::string& text = output_.text();
    std::string rule = "|";
    std::string cells = "|";
    for (int column = 0; column < row.size(); ++column) {
        const ResultValue value = row.value(column);
        const bool isNumber = value.kind == ResultValue::Integer || value.kind == ResultValue::Real;
        rule += isNumber ? " ---: |" : " --- |";
        value_.clear();
        appendShown(value_, value, geometry_, nullText_);
        appendCell(cells, value_);
    }
    if (!hasHead_) {
        writeHead(rule);
    }
    text += cells;
    text += '\n';
    output_.rowDone();
}

void MarkdownWriter::end() {
    if (!hasHead_) {
        std::string rule = "|";
        for (std::size_t i = 0; i < names_.size(); ++i) {
            rule += " --- |";
        }
        writeHead(rule);
    }
}

void MarkdownWriter::writeHead(const std::string& rule) {
    hasHead_ = true;
    std::string head = "|";
    for (const std::string& name : names_) {
        appendCell(head, name);
    }
    output_.text() += head + '\n' + rule + '\n';
}

void MarkdownWriter::appendCell(std::string& line, std::string_view text) {
    line += ' ';
    for (const char character : text) {
        if (character == '\n') {
            line += "<br>";
        } else {
            if (character == '|' || character == '\\') {
                line += '\\';
            }
            line += character;
        }
    }
    line += " |";
}

} // namespace orvane::shell
