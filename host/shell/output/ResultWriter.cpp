#include "host/shell/output/ResultWriter.h"

#include "host/shell/output/CsvWriter.h"
#include "host/shell/output/JsonWriter.h"
#include "host/shell/output/LineWriter.h"
#include "host/shell/output/NumberText.h"
#include "host/shell/output/TableWriter.h"

#include "host/shell/messages/Shell.h"

#include "platform/geometry/editing/Access.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/shapes/GeoSqlType.h"

namespace orvane::shell {

std::unique_ptr<ResultWriter> makeResultWriter(const WriterSettings& settings, Output& output) {
    switch (settings.format) {
    case Format::Csv: return std::make_unique<CsvWriter>(settings, output);
    case Format::Json: return std::make_unique<JsonWriter>(output);
    case Format::GeoJson: return std::make_unique<GeoJsonWriter>(output);
    case Format::Line: return std::make_unique<LineWriter>(settings, output);
    case Format::Markdown: return std::make_unique<MarkdownWriter>(settings, output);
    case Format::Table:
    case Format::Map: break;
    }
    return std::make_unique<TableWriter>(settings, output);
}

void appendGeometry(std::string& text, const geometry::Geometry& geometry, GeometryForm form) {
    if (form == GeometryForm::GeoJson) {
        geometry::appendGeoJson(geometry, text);
        return;
    }
    if (form == GeometryForm::Wkt || geometry.type() == geometry::GeometryType::Point || geometry.isEmpty()) {
        geometry::appendWkt(geometry, text);
        return;
    }
    text += sql::geoSqlType(geometry).toStdString();
    std::size_t positions = 0;
    if (geometry.type() < geometry::GeometryType::Ellipse) {
        geometry::visitPositions(geometry, [&positions](const double*, std::size_t count,
                                                        geometry::Dimensions) { positions += count; });
        text += Shell::tr(", точек: %0").arg(positions).toStdString();
    }
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

void appendShown(std::string& text, const ResultValue& value, GeometryForm geometry,
                 std::string_view nullText) {
    if (value.kind == ResultValue::Null) {
        text += nullText;
    } else if (value.kind == ResultValue::Geometry && geometry != GeometryForm::Wkt) {
        appendGeometry(text, *value.geometry, geometry);
    } else {
        appendPlain(text, value);
    }
}

} // namespace orvane::shell
