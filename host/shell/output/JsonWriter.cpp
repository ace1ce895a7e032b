#include "host/shell/output/JsonWriter.h"

#include "host/shell/messages/Shell.h"
#include "host/shell/output/NumberText.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/shapes/Geometry.h"
#include "platform/utils/Utf8.h"
#include "platform/utils/VisibleText.h"

#include <cmath>
#include <set>

namespace orvane::shell {

namespace {

/// The names as member keys, each once.
std::vector<std::string> memberKeys(const std::vector<std::string>& columns) {
    std::set<std::string> taken(columns.begin(), columns.end());
    std::set<std::string> used;
    std::vector<std::string> keys;
    for (const std::string& column : columns) {
        std::string name = column;
        for (int number = 2; used.count(name) != 0 || (number > 2 && taken.count(name) != 0); ++number) {
            name = column + '_' + std::to_string(number);
        }
        used.insert(name);
        std::string& key = keys.emplace_back();
        appendJsonText(key, name);
        key += ':';
    }
    return keys;
}

/// A character that is not written as it is.
void appendEscaped(std::string& text, char32_t character) {
    switch (character) {
    case U'"': text += "\\\""; return;
    case U'\\': text += "\\\\"; return;
    case U'\n': text += "\\n"; return;
    case U'\r': text += "\\r"; return;
    case U'\t': text += "\\t"; return;
    case utf8::replacement: utf8::append(text, character); return;
    default: break;
    }
    constexpr std::string_view hex = "0123456789abcdef";
    for (const char16_t unit : QString::fromUcs4(&character, 1).toStdU16String()) {
        text += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4) {
            text += hex[unit >> shift & 15];
        }
    }
}

/// Everything but a geometry.
void appendJsonValue(std::string& text, const ResultValue& value) {
    switch (value.kind) {
    case ResultValue::Integer: appendInteger(text, value.integer); break;
    case ResultValue::Real:
        if (std::isinf(value.real)) {
            text += value.real < 0 ? "-1e999" : "1e999";
        } else {
            appendReal(text, value.real);
        }
        break;
    case ResultValue::Text: appendJsonText(text, value.view); break;
    case ResultValue::Bytes:
        text += '"';
        appendHex(text, value.view);
        text += '"';
        break;
    case ResultValue::Null:
    case ResultValue::Geometry: text += "null"; break;
    }
}

} // namespace

void appendJsonText(std::string& text, std::string_view bytes) {
    text += '"';
    std::size_t copied = 0; // up to where the bytes are in the text
    for (std::size_t position = 0; position < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[position]);
        const bool isPlain = byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\';
        const auto sign = isPlain ? utils::Sign{1, byte, true} : utils::signAt(bytes, position);
        if (isPlain || (byte >= 0x80 && sign.isVisible)) {
            position += sign.size;
            continue;
        }
        text.append(bytes, copied, position - copied);
        appendEscaped(text, sign.character);
        position += sign.size;
        copied = position;
    }
    text.append(bytes, copied);
    text += '"';
}

void JsonWriter::begin(const std::vector<std::string>& columns) {
    keys_ = memberKeys(columns);
    output_.text() += '[';
}

void JsonWriter::row(const ResultRow& row) {
    std::string& text = output_.text();
    text += first_ ? "\n{" : ",\n{";
    first_ = false;
    for (int column = 0; column < row.size(); ++column) {
        if (column != 0) {
            text += ',';
        }
        text += keys_[static_cast<std::size_t>(column)];
        const ResultValue value = row.value(column);
        if (value.kind == ResultValue::Geometry) {
            geometry::appendGeoJson(*value.geometry, text);
        } else {
            appendJsonValue(text, value);
        }
    }
    text += '}';
    output_.rowDone();
}

void JsonWriter::end() {
    output_.text() += first_ ? "]\n" : "\n]\n";
}

GeoJsonWriter::GeoJsonWriter(Output& output) : ResultWriter(output) {}

GeoJsonWriter::~GeoJsonWriter() = default;

void GeoJsonWriter::begin(const std::vector<std::string>& columns) {
    keys_ = memberKeys(columns);
    for (std::size_t column = 0; column < columns.size() && geometryColumn_ < 0; ++column) {
        if (columns[column] == "obj") {
            geometryColumn_ = static_cast<int>(column);
        }
    }
    output_.text() += R"({"type":"FeatureCollection","features":[)";
}

void GeoJsonWriter::row(const ResultRow& row) {
    std::string& text = output_.text();
    text += first_ ? "\n" : ",\n";
    first_ = false;
    text += R"({"type":"Feature","geometry":)";
    properties_.clear();
    bool hasGeometry = false;
    for (int column = 0; column < row.size(); ++column) {
        const ResultValue value = row.value(column);
        if (geometryColumn_ < 0 && value.kind == ResultValue::Geometry) {
            geometryColumn_ = column;
        }
        if (column == geometryColumn_) {
            hasGeometry = value.kind == ResultValue::Geometry;
            if (hasGeometry) {
                appendInWgs84(*value.geometry);
            }
            continue;
        }
        if (!properties_.empty()) {
            properties_ += ',';
        }
        properties_ += keys_[static_cast<std::size_t>(column)];
        if (value.kind == ResultValue::Geometry) {
            geometry::appendGeoJson(*value.geometry, properties_);
        } else {
            appendJsonValue(properties_, value);
        }
    }
    if (!hasGeometry) {
        text += "null";
    }
    text += R"(,"properties":{)";
    text += properties_;
    text += "}}";
    output_.rowDone();
}

void GeoJsonWriter::appendInWgs84(const geometry::Geometry& geometry) {
    if (!needsTransformation(geometry.coordSystem())) {
        geometry::appendGeoJson(geometry, output_.text());
        return;
    }
    const auto transformed = geometry.transformed(wgs84_);
    if (!transformed) {
        throw std::runtime_error(
            Shell::tr("геометрия не переводится в WGS 84 из %0, а geojson иных координат не знает")
                .arg(geometry.coordSystem()->taggedString())
                .toStdString());
    }
    geometry::appendGeoJson(*transformed, output_.text());
}

bool GeoJsonWriter::needsTransformation(const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    if (!coordSystem) {
        return false;
    }
    if (coordSystem != lastCoordSystem_) {
        if (!wgs84_) {
            wgs84_ = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
        }
        lastCoordSystem_ = coordSystem;
        lastNeedsTransformation_ = !coordSystem->equals(*wgs84_);
    }
    return lastNeedsTransformation_;
}

void GeoJsonWriter::end() {
    output_.text() += first_ ? "]}\n" : "\n]}\n";
}

} // namespace orvane::shell
