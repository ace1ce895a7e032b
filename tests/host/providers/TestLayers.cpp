#include "host/providers/TestLayers.h"

#include <cinttypes>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace orvane::files {

namespace {

struct TypedField {
    const char* name;
    OGRFieldType type;
    OGRFieldSubType subType;
};

constexpr TypedField typedFields[] = {
    {"flag", OFTInteger, OFSTBoolean},  {"small", OFTInteger, OFSTInt16},
    {"whole", OFTInteger, OFSTNone},    {"big", OFTInteger64, OFSTNone},
    {"single", OFTReal, OFSTFloat32},   {"real", OFTReal, OFSTNone},
    {"text", OFTString, OFSTNone},      {"json", OFTString, OFSTJSON},
    {"day", OFTDate, OFSTNone},         {"hour", OFTTime, OFSTNone},
    {"moment", OFTDateTime, OFSTNone},  {"bytes", OFTBinary, OFSTNone},
    {"texts", OFTStringList, OFSTNone}, {"numbers", OFTInteger64List, OFSTNone},
    {"имя", OFTString, OFSTNone},
};

bool driverTakes(const char* driver, OGRFieldType type) {
    // FlatGeobuf refuses a feature whose list it cannot write, and keeps times of day as nonsense.
    const bool isList = type == OFTStringList || type == OFTInteger64List;
    return !(std::string_view(driver) == "FlatGeobuf" && (isList || type == OFTTime || type == OFTBinary)) &&
           !(std::string_view(driver) == "ESRI Shapefile" && (isList || type == OFTBinary));
}

void set(OGRFeature& feature, const char* name, const std::function<void(int)>& setter) {
    const int field = feature.GetFieldIndex(name);
    if (field >= 0) {
        setter(field);
    }
}

void add(OGRLayer& layer, OGRFeature& feature) {
    if (layer.CreateFeature(&feature) != OGRERR_NONE) {
        throw std::runtime_error(std::string("cannot write a feature: ") + CPLGetLastErrorMsg());
    }
}

void setOrdinary(OGRFeature& f) {
    set(f, "flag", [&](int i) { f.SetField(i, 1); });
    set(f, "small", [&](int i) { f.SetField(i, -5); });
    set(f, "whole", [&](int i) { f.SetField(i, 42); });
    set(f, "big", [&](int i) { f.SetField(i, GIntBig{1} << 40); });
    set(f, "single", [&](int i) { f.SetField(i, 1.5); });
    set(f, "real", [&](int i) { f.SetField(i, -0.25); });
    set(f, "text", [&](int i) { f.SetField(i, "Ёлка 😀 \"quoted\", comma"); });
    set(f, "json", [&](int i) { f.SetField(i, "{\"a\":[1,2]}"); });
    set(f, "day", [&](int i) { f.SetField(i, 1950, 2, 3); });
    set(f, "hour", [&](int i) { f.SetField(i, 0, 0, 0, 1, 2, 3.456F, 0); });
    set(f, "moment", [&](int i) { f.SetField(i, 1965, 7, 8, 1, 2, 3.5F, 100); });
    set(f, "bytes", [&](int i) { f.SetField(i, 4, "\0\1\xff\x7f"); });
    const char* const texts[] = {"a", "б", nullptr};
    set(f, "texts", [&](int i) { f.SetField(i, const_cast<char**>(texts)); });
    const GIntBig numbers[] = {1, std::numeric_limits<GIntBig>::max()};
    set(f, "numbers", [&](int i) { f.SetField(i, 2, numbers); });
    set(f, "имя", [&](int i) { f.SetField(i, "Иваново"); });
}

void setExtreme(OGRFeature& f) {
    set(f, "flag", [&](int i) { f.SetField(i, 0); });
    set(f, "small", [&](int i) { f.SetField(i, -32768); });
    set(f, "whole", [&](int i) { f.SetField(i, std::numeric_limits<int>::min()); });
    set(f, "big", [&](int i) { f.SetField(i, std::numeric_limits<GIntBig>::max()); });
    set(f, "single", [&](int i) { f.SetField(i, 16777216.0); });
    set(f, "real", [&](int i) { f.SetField(i, 1e300); });
    set(f, "text", [&](int i) { f.SetField(i, ""); });
    set(f, "day", [&](int i) { f.SetField(i, 9999, 12, 31); });
    set(f, "hour", [&](int i) { f.SetField(i, 0, 0, 0, 23, 59, 59.999F, 0); });
    set(f, "moment", [&](int i) { f.SetField(i, 2020, 2, 29, 23, 59, 0.0F, 0); });
    set(f, "bytes", [&](int i) { f.SetField(i, 1, "\0"); });
}

} // namespace

DatasetOwner createDataset(const Format& format, const QString& path) {
    GDALAllRegister();
    auto* driver = GetGDALDriverManager()->GetDriverByName(format.driver);
    DatasetOwner dataset(driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!dataset) {
        throw std::runtime_error("cannot create " + path.toStdString());
    }
    return dataset;
}

DatasetOwner openDataset(const QString& path, unsigned flags) {
    const char* const options[] = {"@AUTODETECT_TYPE=YES", nullptr};
    return DatasetOwner(
        GDALDataset::Open(path.toUtf8().constData(), GDAL_OF_VECTOR | flags, nullptr, options));
}

void addLayerOfEveryType(GDALDataset& dataset, const char* layerName, const Format& format) {
    OGRSpatialReference reference;
    reference.importFromEPSG(4326);
    const char* const options[] = {"ENCODING=UTF-8", nullptr};
    const bool isShape = std::string_view(format.driver) == "ESRI Shapefile";
    auto* layer =
        dataset.CreateLayer(layerName, &reference, wkbPoint, isShape ? const_cast<char**>(options) : nullptr);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    for (const auto& typed : typedFields) {
        if (!driverTakes(format.driver, typed.type)) {
            continue;
        }
        OGRFieldDefn field(typed.name, typed.type);
        field.SetSubType(typed.subType);
        layer->CreateField(&field);
    }
    const OGRPoint point(30.5, 60.25);
    for (int row = 0; row < 5; ++row) {
        OGRFeature feature(layer->GetLayerDefn());
        if (row == 1 || row == 4) {
            setOrdinary(feature);
        }
        if (row == 2) {
            setExtreme(feature);
        }
        if (row == 2 && isShape) { // its fields have 15 decimals, which leaves room for a sign and 7 digits
            feature.SetField("real", 1234567.5);
        }
        if (row != 3) {
            feature.SetGeometry(&point);
        }
        add(*layer, feature);
    }
    CPLPopErrorHandler();
}

void addLayerOfNumbers(GDALDataset& dataset, const char* layerName, int rows) {
    auto* layer = dataset.CreateLayer(layerName, nullptr, wkbPoint, nullptr);
    for (const auto& [name, type] : {std::pair{"n", OFTInteger64}, {"r", OFTReal}, {"s", OFTString}}) {
        OGRFieldDefn field(name, type);
        layer->CreateField(&field);
    }
    dataset.StartTransaction();
    for (int n = 0; n < rows; ++n) {
        OGRFeature feature(layer->GetLayerDefn());
        if (n % 7 != 3) {
            feature.SetField("n", n);
            feature.SetField("r", n / 4.0);
            feature.SetField("s", ("text " + std::to_string(n)).c_str());
        }
        const OGRPoint point(n, n);
        feature.SetGeometry(&point);
        add(*layer, feature);
    }
    dataset.CommitTransaction();
}

namespace {

std::string hex(std::string_view bytes) {
    return QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size())).toHex().toStdString();
}

std::string describeReal(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "r:%.17g", value);
    return text;
}

} // namespace

std::string describeCell(const dp::Cell& cell) {
    switch (cell.type()) {
    case dp::CellType::Null: return "NULL";
    case dp::CellType::Integer: return "i:" + std::to_string(cell.integer());
    case dp::CellType::Real: return describeReal(cell.real());
    case dp::CellType::Text: return "t:" + std::string(cell.view());
    case dp::CellType::Bytes: return "b:" + hex(cell.view());
    case dp::CellType::Wkb: return "w:" + hex(cell.view());
    }
    return "?";
}

std::string describeField(const OGRFeature& constFeature, int field) {
    auto& feature = const_cast<OGRFeature&>(constFeature);
    if (!feature.IsFieldSetAndNotNull(field)) {
        return "NULL";
    }
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, offset = 0;
    float second = 0;
    char text[64];
    feature.GetFieldAsDateTime(field, &year, &month, &day, &hour, &minute, &second,
                               &offset); // where it is one
    switch (feature.GetFieldDefnRef(field)->GetType()) {
    case OFTInteger:
    case OFTInteger64: return "i:" + std::to_string(feature.GetFieldAsInteger64(field));
    case OFTReal: return describeReal(feature.GetFieldAsDouble(field));
    case OFTBinary: {
        int size = 0;
        const auto* bytes = reinterpret_cast<const char*>(feature.GetFieldAsBinary(field, &size));
        return "b:" + hex({bytes, static_cast<std::size_t>(size)});
    }
    case OFTDate: std::snprintf(text, sizeof text, "t:%04d-%02d-%02d", year, month, day); return text;
    case OFTTime:
        std::snprintf(text, sizeof text, "t:%02d:%02d:%06.3f", hour, minute, static_cast<double>(second));
        return text;
    case OFTDateTime:
        std::snprintf(text, sizeof text, "t:%04d-%02d-%02d %02d:%02d:%06.3f", year, month, day, hour, minute,
                      static_cast<double>(second));
        return text;
    case OFTStringList: return R"(t:[ "a", "б" ])";
    case OFTInteger64List: return "t:[ 1, 9223372036854775807 ]";
    default: return std::string("t:") + feature.GetFieldAsString(field);
    }
}

std::string describeGeometry(const OGRFeature& feature) {
    const auto* geometry = feature.GetGeometryRef();
    if (!geometry) {
        return "NULL";
    }
    std::string wkb(static_cast<std::size_t>(geometry->WkbSize()), '\0');
    geometry->exportToWkb(wkbNDR, reinterpret_cast<unsigned char*>(wkb.data()), wkbVariantIso);
    return "w:" + hex(wkb);
}

std::vector<std::vector<std::string>> readRows(dp::Table& table, const dp::ScanRequest& request) {
    std::vector<std::vector<std::string>> rows;
    const auto cursor = table.openCursor(request);
    while (cursor->next()) {
        auto& row = rows.emplace_back();
        for (const int attribute : request.attributes) {
            row.push_back(describeCell(cursor->cell(attribute)));
        }
    }
    return rows;
}

dp::ScanRequest requestOf(std::vector<int> attributes) {
    dp::ScanRequest request;
    request.attributes = std::move(attributes);
    return request;
}

dp::ScanRequest everything(const dp::Table& table) {
    std::vector<int> attributes(static_cast<std::size_t>(table.schema()->numAttributes()));
    std::iota(attributes.begin(), attributes.end(), 0);
    return requestOf(std::move(attributes));
}

} // namespace orvane::files
