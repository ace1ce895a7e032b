#pragma once

#include "host/shell/output/ResultWriter.h"

namespace orvane::shell {

/// Comma-separated values after RFC 4180, except that lines end with a line feed alone. A NULL is an empty
/// field or the text of the user's choice; a text that would be taken for a NULL is quoted, so the two stay
/// apart.
class CsvWriter : public ResultWriter {
public:
    CsvWriter(const WriterSettings& settings, Output& output);

    bool showsTitles() const override { return header_; }
    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override {}

private:
    void appendField(std::string_view field);

    bool header_;
    std::string nullText_;
};

} // namespace orvane::shell
