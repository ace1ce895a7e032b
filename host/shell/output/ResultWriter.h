#pragma once

#include "host/shell/output/Output.h"
#include "host/shell/output/ResultRow.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::shell {

/// Writes the result of one statement in one format. The calls come in the order begin, row for each row,
/// end.
class ResultWriter {
public:
    virtual ~ResultWriter() = default;
    ResultWriter(const ResultWriter&) = delete;
    ResultWriter& operator=(const ResultWriter&) = delete;

    /// Whether `begin` looks at the columns' titles, which take some time to find.
    virtual bool showsTitles() const { return true; }
    virtual void begin(const std::vector<std::string>& columns) = 0;
    virtual void row(const ResultRow& row) = 0;
    virtual void end() = 0;

protected:
    explicit ResultWriter(Output& output) : output_(output) {}

    Output& output_;
};

enum class Format { Table, Line, Markdown, Csv, Json, GeoJson, Map };

/// How a table shows geometries.
enum class GeometryForm {
    Wkt,
    Short, ///< kind and number of positions
    GeoJson
};

/// How a format shows what it leaves open.
struct WriterSettings {
    Format format = Format::Table;
    bool header = true;
    std::optional<std::string> nullText; ///< default: NULL in table, nothing in csv
    int terminalWidth = 0;               ///< columns that a line of a table may take, 0 for any number
    GeometryForm geometry = GeometryForm::Wkt;
};

/// The output is not owned. Not for maps.
std::unique_ptr<ResultWriter> makeResultWriter(const WriterSettings& settings, Output& output);

/// The geometry in a form; points and what is empty as WKT in the short one, too.
void appendGeometry(std::string& text, const geometry::Geometry& geometry, GeometryForm form);

/// The value as table and csv show it: numbers as NumberText says, geometries as WKT, other bytes as X'0A1B';
/// nothing for NULL.
void appendPlain(std::string& text, const ResultValue& value);
/// The same with geometries in a form, and a text for NULL.
void appendShown(std::string& text, const ResultValue& value, GeometryForm geometry,
                 std::string_view nullText);

} // namespace orvane::shell
