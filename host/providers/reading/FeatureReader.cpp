#include "host/providers/reading/FeatureReader.h"

#include "host/providers/columns/ColumnBuilder.h"

#include <ogr_feature.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace orvane::files {

namespace {

using Reading = LayerColumn::Reading;

void appendTime(OGRFeatureH feature, const LayerColumn& column, ColumnBuilder& builder) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, offset = 0;
    float seconds = 0;
    if (!OGR_F_GetFieldAsDateTimeEx(feature, column.field, &year, &month, &day, &hour, &minute, &seconds,
                                    &offset)) {
        builder.appendNull();
        return;
    }
    // Seconds are single precision: 59.9996 stays in its minute.
    const int milliseconds = std::clamp(static_cast<int>(std::lround(seconds * 1000.0F)), 0, 59999);
    char text[64];
    int length = 0;
    if (column.reading != Reading::Time) {
        length = std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
    }
    if (column.reading == Reading::DateTime) {
        text[length++] = ' ';
    }
    if (column.reading != Reading::Date) {
        length +=
            std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length),
                          "%02d:%02d:%02d.%03d", hour, minute, milliseconds / 1000, milliseconds % 1000);
    }
    builder.append(std::string_view(text, static_cast<std::size_t>(length)));
}

void appendGeometry(OGRFeatureH feature, ColumnBuilder& builder) {
    const OGRGeometryH geometry = OGR_F_GetGeometryRef(feature);
    if (!geometry) {
        builder.appendNull();
        return;
    }
    auto* wkb = builder.appendSpace(static_cast<std::size_t>(OGR_G_WkbSize(geometry)));
    if (OGR_G_ExportToIsoWkb(geometry, wkbNDR, reinterpret_cast<unsigned char*>(wkb)) != OGRERR_NONE) {
        builder.replaceLastByNull();
    }
}

void appendField(OGRFeatureH feature, const LayerColumn& column, ColumnBuilder& builder) {
    if (!OGR_F_IsFieldSetAndNotNull(feature, column.field)) {
        builder.appendNull();
        return;
    }
    switch (column.reading) {
    case Reading::Integer:
        builder.append(std::int64_t{OGR_F_GetFieldAsInteger64(feature, column.field)});
        return;
    case Reading::Real: builder.append(OGR_F_GetFieldAsDouble(feature, column.field)); return;
    case Reading::Bytes: {
        int size = 0;
        const auto* bytes =
            reinterpret_cast<const char*>(OGR_F_GetFieldAsBinary(feature, column.field, &size));
        builder.append(std::string_view(bytes, static_cast<std::size_t>(size)));
        return;
    }
    case Reading::Date:
    case Reading::Time:
    case Reading::DateTime: appendTime(feature, column, builder); return;
    case Reading::List: {
        const CplString json(OGRFeature::FromHandle(feature)->GetFieldAsSerializedJSon(column.field));
        builder.append(std::string_view(json ? json.get() : "[]"));
        return;
    }
    default: builder.append(std::string_view(OGR_F_GetFieldAsString(feature, column.field))); return;
    }
}

void appendValue(OGRFeatureH feature, const LayerColumn& column, ColumnBuilder& builder) {
    switch (column.source) {
    case LayerColumn::Source::FeatureId: builder.append(std::int64_t{OGR_F_GetFID(feature)}); return;
    case LayerColumn::Source::Field: appendField(feature, column, builder); return;
    case LayerColumn::Source::Geometry: appendGeometry(feature, builder); return;
    }
}

ColumnKind builtKind(const LayerColumn& column) {
    switch (column.reading) {
    case Reading::Integer: return ColumnKind::Int64;
    case Reading::Real: return ColumnKind::Double;
    case Reading::Bytes: return ColumnKind::Bytes;
    case Reading::Geometry: return ColumnKind::Wkb;
    default: return ColumnKind::Text;
    }
}

} // namespace

FeatureReader::FeatureReader(LayerScan scan) : scan_(std::move(scan)) {}

FeatureReader::FeatureReader(LayerScan scan, std::vector<std::int64_t> ids)
    : scan_(std::move(scan)), readsIds_(true), ids_(std::move(ids)) {}

FeatureReader::~FeatureReader() {
    OGR_L_ResetReading(scan_.layer); // an unfinished query would keep the file locked for writers
}

FeatureHandle FeatureReader::nextFeature(const GdalErrorScope& errors) {
    FeatureHandle feature;
    if (!readsIds_) {
        feature.reset(OGR_L_GetNextFeature(scan_.layer));
    }
    while (readsIds_ && !feature && nextId_ < ids_.size()) {
        feature.reset(OGR_L_GetFeature(scan_.layer, ids_[nextId_++]));
    }
    if (!errors.error().isEmpty()) {
        scan_.raise(errors);
    }
    return feature;
}

bool FeatureReader::next(ColumnBatch& batch) {
    if (isAtEnd_) {
        return false;
    }
    const Confinement confinement = confine(scan_.lease);
    const GdalErrorScope errors;
    std::vector<ColumnKind> kinds;
    for (const auto* column : scan_.columns) {
        kinds.push_back(builtKind(*column));
    }
    BatchBuilder builder(kinds);
    while (!isStopped_ && builder.takesRow(scan_.batchRows)) {
        const auto feature = nextFeature(errors);
        if (!feature) {
            isAtEnd_ = true;
            scan_.requireRows(errors);
            break;
        }
        for (std::size_t i = 0; i < scan_.columns.size(); ++i) {
            appendValue(feature.get(), *scan_.columns[i], builder.columns[i]);
        }
        builder.endRow(OGR_F_GetFID(feature.get()));
        ++scan_.rows;
    }
    return std::move(builder).finish(batch);
}

} // namespace orvane::files
