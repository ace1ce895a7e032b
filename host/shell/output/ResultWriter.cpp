#include "host/shell/output/ResultWriter.h"

#include "host/shell/output/CsvWriter.h"
#include "host/shell/output/JsonWriter.h"
#include "host/shell/output/NumberText.h"
#include "host/shell/output/TableWriter.h"

#include "platform/geometry/forms/TextFormats.h"

namespace orvane::shell {

std::unique_ptr<ResultWriter> makeResultWriter(const WriterSettings& settings, Output& output) {
    switch (settings.format) {
    case Format::Csv: return std::make_unique<CsvWriter>(settings, output);
    case Format::Json: return std::make_unique<JsonWriter>(output);
    case Format::GeoJson: return std::make_unique<GeoJsonWriter>(output);
    case Format::Table: break;
    }
    return std::make_unique<TableWriter>(settings, output);
}

void appendPlain(std::string& text, const ResultValue& value) {
    switch (value.kind) {
    case ResultValue::Null: break;
    case ResultValue::Integer: appendInteger(text, value.integer); break;
    case ResultValue::Real: appendReal(text, value.real); break;
    case ResultValue::Text: text += value.view; break;
    case ResultValue::Geometry: geometry::appendWkt(*value.geometry, text); break;
    case ResultValue::Bytes:
        text += "X'";
        appendHex(text, value.view);
        text += '\'';
        break;
    }
}

} // namespace orvane::shell
