#pragma once

#include "host/shell/output/ResultWriter.h"

namespace orvane::shell {

/// Each value on a line of its own behind the name of its column, an empty line between rows: for rows that
/// are wider than the terminal. All texts are in their visible form (platform/utils/VisibleText.h).
class LineWriter : public ResultWriter {
public:
    LineWriter(const WriterSettings& settings, Output& output);

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override {}

private:
    std::string nullText_;
    GeometryForm geometry_;
    std::vector<std::string> names_; ///< padded to one width
    std::string value_;
    bool isFirst_ = true;
};

/// A table of Markdown. In cells, "|" and backslashes are escaped, and a line break is "<br>".
class MarkdownWriter : public ResultWriter {
public:
    MarkdownWriter(const WriterSettings& settings, Output& output);

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override;

private:
    void writeHead(const std::string& rule);
    static void appendCell(std::string& line, std::string_view text);

    std::string nullText_;
    GeometryForm geometry_;
    std::vector<std::string> names_;
    std::string value_;
    bool hasHead_ = false;
};

} // namespace orvane::shell
