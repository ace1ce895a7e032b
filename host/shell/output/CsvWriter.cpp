#include "host/shell/output/CsvWriter.h"

namespace orvane::shell {

CsvWriter::CsvWriter(const WriterSettings& settings, Output& output)
    : ResultWriter(output), header_(settings.header), nullText_(settings.nullText.value_or(std::string())) {}

void CsvWriter::begin(const std::vector<std::string>& columns) {
    if (!header_) {
        return;
    }
    for (std::size_t column = 0; column < columns.size(); ++column) {
        if (column != 0) {
            output_.text() += ',';
        }
        appendField(columns[column]);
    }
    output_.text() += '\n';
}

void CsvWriter::row(const ResultRow& row) {
    std::string& text = output_.text();
    for (int column = 0; column < row.size(); ++column) {
        if (column != 0) {
            text += ',';
        }
        const ResultValue value = row.value(column);
        if (value.kind == ResultValue::Null) {
            text += nullText_;
        } else if (value.kind == ResultValue::Text) {
            appendField(value.view);
        } else if (value.kind == ResultValue::Geometry) {
            // The commas between the coordinates would split the field.
            text += '"';
            appendPlain(text, value);
            text += '"';
        } else {
            appendPlain(text, value);
        }
    }
    text += '\n';
    output_.rowDone();
}

void CsvWriter::appendField(std::string_view field) {
    std::string& text = output_.text();
    if (field != nullText_ && field.find_first_of(",\"\r\n") == std::string_view::npos) {
        text += field;
        return;
    }
    text += '"';
    for (const char character : field) {
        if (character == '"') {
            text += '"';
        }
        text += character;
    }
    text += '"';
}

} // namespace orvane::shell
