#pragma once

#include "host/shell/output/ResultWriter.h"

namespace orvane::shell {

/// Aligned columns below their names, numbers to the right. The widths come from the first thousand rows; a
/// later value that is wider shifts the rest of its line. All texts are in their visible form
/// (platform/utils/VisibleText.h), so each row is one line. On a terminal the columns are cut to its width,
/// and "…" shows where; elsewhere nothing is cut, but a column is not padded beyond a hundred places.
class TableWriter : public ResultWriter {
public:
    TableWriter(const WriterSettings& settings, Output& output);

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override;

private:
    struct Cell {
        std::string text;
        int width = 0;
        bool isNumber = false;
        bool isNull = false;
    };
    struct Column {
        std::string name;
        int nameWidth = 0;
        int width = 0;
        bool isNumeric = false; ///< of the rows kept, all that have a value have a number
    };

    void readCell(Cell& cell, const ResultValue& value) const;
    /// Chooses the widths and writes what was kept.
    void settleWidths();
    void fitIntoTerminal();
    void writeHeader();
    void writeRow(const Cell* cells);
    void writeCell(const Cell& cell, const Column& column, bool isLast);

    bool header_;
    std::string nullText_;
    GeometryForm geometry_;
    int terminalWidth_;
    std::vector<Column> columns_;
    std::vector<Cell> kept_; ///< row after row, until the widths are settled
    std::vector<Cell> current_;
    bool settled_ = false;
};

} // namespace orvane::shell
