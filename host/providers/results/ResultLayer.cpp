#include "host/providers/results/ResultLayer.h"

#include "host/providers/datasets/CheckedFiles.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/GdalHandles.h"
#include "platform/cs/CoordSystem.h"
#include "platform/dp/AttributeNames.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/SpatialiteBlob.h>

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>

namespace orvane::files {

namespace {

using Kind = ResultCell::Kind;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::ResultLayer)
};

CPLStringList optionList(const std::vector<const char*>& options) {
    CPLStringList list;
    for (const char* option : options) {
        list.AddString(option);
    }
    return list;
}

/// Whether a list of the driver's, words between blanks, has the word.
bool lists(GDALDriverH driver, const char* item, const char* word) {
    const CPLStringList words(CSLTokenizeString(GDALGetMetadataItem(driver, item, nullptr)));
    return words.FindString(word) >= 0;
}

struct FieldKind {
    OGRFieldType type;
    OGRFieldSubType subType;
};

FieldKind fieldKind(int metaType) {
    switch (metaType) {
    case QMetaType::Bool: return {OFTInteger, OFSTBoolean};
    case QMetaType::Short: return {OFTInteger, OFSTInt16};
    case QMetaType::Int: return {OFTInteger, OFSTNone};
    case QMetaType::LongLong: return {OFTInteger64, OFSTNone};
    case QMetaType::Float: return {OFTReal, OFSTFloat32};
    case QMetaType::Double: return {OFTReal, OFSTNone};
    case QMetaType::QDate: return {OFTDate, OFSTNone};
    case QMetaType::QTime: return {OFTTime, OFSTNone};
    case QMetaType::QDateTime: return {OFTDateTime, OFSTNone};
    case QMetaType::QByteArray: return {OFTBinary, OFSTNone};
    default: return {OFTString, OFSTNone};
    }
}

/// The nearest that the driver has: text holds everything.
FieldKind supportedKind(GDALDriverH driver, FieldKind wanted) {
    if (!lists(driver, GDAL_DMD_CREATIONFIELDDATATYPES, OGR_GetFieldTypeName(wanted.type))) {
        return {OFTString, OFSTNone};
    }
    const bool hasSubType = wanted.subType == OFSTNone || lists(driver, GDAL_DMD_CREATIONFIELDDATASUBTYPES,
                                                                OGR_GetFieldSubTypeName(wanted.subType));
    return {wanted.type, hasSubType ? wanted.subType : OFSTNone};
}

ReferenceHandle referenceOf(const std::shared_ptr<cs::CoordSystem>& system) {
    if (!system) {
        return nullptr;
    }
    ReferenceHandle reference(OSRNewSpatialReference(nullptr));
    QString definition = system->taggedString();
    const QString tag = definition.section(QLatin1Char(':'), 0, 0);
    if (tag != QLatin1String("epsg")) {
        definition = definition.mid(tag.size() + 1);
    }
    if (OSRSetFromUserInput(reference.get(), definition.toUtf8().constData()) != OGRERR_NONE) {
        return nullptr;
    }
    OSRSetAxisMappingStrategy(reference.get(), OAMS_TRADITIONAL_GIS_ORDER);
    return reference;
}

constexpr std::uint32_t bit(std::uint32_t kind) {
    return std::uint32_t{1} << kind;
}

/// The kinds as a driver without curves sees them.
std::uint32_t linearKinds(std::uint32_t kinds) {
    constexpr std::array<std::array<std::uint32_t, 2>, 5> pairs{{{8, 2}, {9, 2}, {10, 3}, {11, 5}, {12, 6}}};
    for (const auto& [curved, linear] : pairs) {
        if (kinds & bit(curved)) {
            kinds = (kinds & ~bit(curved)) | bit(linear);
        }
    }
    return kinds;
}

/// One kind, its multiple form when both occur, any geometry otherwise.
OGRwkbGeometryType layerType(const ResultColumn& column, bool hasCurves) {
    const std::uint32_t kinds = hasCurves ? column.geometryKinds : linearKinds(column.geometryKinds);
    std::uint32_t chosen = wkbUnknown;
    for (std::uint32_t kind = wkbPoint; kind <= wkbMultiSurface; ++kind) {
        const bool isMultiple = kind >= wkbMultiPoint && kind <= wkbMultiPolygon;
        if (kinds == bit(kind) || (isMultiple && kinds == (bit(kind) | bit(kind - 3)))) {
            chosen = kind;
        }
    }
    return OGR_GT_SetModifier(static_cast<OGRwkbGeometryType>(chosen), column.hasZ, column.hasM);
}

/// Characters of a real number in a field of fixed width, and how many of them are decimals.
struct RealForm {
    int width;
    int decimals;
};

/// The form with the most decimals that holds every number of a column; none where a number is too large.
std::optional<RealForm> realForm(const ResultColumn& column, int width) {
    constexpr int mostDecimals = 15; // of a double
    const int room = column.hasNegatives ? width - 1 : width;
    if (!(column.largest < std::pow(10.0, room))) {
        return std::nullopt;
    }
    const int digits = column.largest < 1 ? 1 : static_cast<int>(std::log10(column.largest)) + 1;
    return RealForm{width, std::clamp(room - digits - 1, 0, mostDecimals)};
}

/// A column of the result on its way into a field of the layer.
struct FieldWriter {
    std::size_t column;
    int field;
    OGRFieldType type;
    bool keepsBlobs;
    const cs::CoordSystem* coordSystem;
    int mostTextBytes; ///< 0 for any number
    std::int64_t cutTexts = 0;

    void write(OGRFeatureH feature, const ResultCell& cell, std::string& text);
    void writeNumber(OGRFeatureH feature, const ResultCell& cell, std::string& text);
    void writeBytes(OGRFeatureH feature, const ResultCell& cell, std::string& text);
    void setText(OGRFeatureH feature, std::string& text);
};

template<class Number>
void appendNumber(std::string& text, Number number) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

void FieldWriter::setText(OGRFeatureH feature, std::string& text) {
    if (mostTextBytes != 0 && text.size() > static_cast<std::size_t>(mostTextBytes)) {
        text.resize(dp::bytesThatFit(text, mostTextBytes));
        ++cutTexts;
    }
    OGR_F_SetFieldString(feature, field, text.c_str());
}

void FieldWriter::writeNumber(OGRFeatureH feature, const ResultCell& cell, std::string& text) {
    const bool isInteger = cell.kind == Kind::Integer;
    switch (type) {
    case OFTInteger: OGR_F_SetFieldInteger(feature, field, static_cast<int>(cell.integer)); return;
    case OFTInteger64: OGR_F_SetFieldInteger64(feature, field, cell.integer); return;
    case OFTReal:
        OGR_F_SetFieldDouble(feature, field, isInteger ? static_cast<double>(cell.integer) : cell.real);
        return;
    default: break;
    }
    text.clear();
    isInteger ? appendNumber(text, cell.integer) : appendNumber(text, cell.real);
    setText(feature, text);
}

void FieldWriter::writeBytes(OGRFeatureH feature, const ResultCell& cell, std::string& text) {
    text.clear();
    if (cell.kind == Kind::Geometry && keepsBlobs) {
        if (!engine::appendSpatialiteBlob(cell.bytes, coordSystem ? coordSystem->epsg() : 0, text)) {
            text = cell.bytes;
        }
    } else if (cell.kind == Kind::Geometry) {
        geometry::appendWkt(*geometry::GeometryFactory::fromWkb(cell.bytes, nullptr), text);
    } else if (type == OFTBinary) {
        text = cell.bytes;
    } else {
        const auto bytes = QByteArray::fromRawData(cell.bytes.data(), static_cast<int>(cell.bytes.size()));
        text = bytes.toHex().toUpper().toStdString();
    }
    if (type == OFTBinary) {
        OGR_F_SetFieldBinary(feature, field, static_cast<int>(text.size()), text.data());
    } else {
        setText(feature, text);
    }
}

void FieldWriter::write(OGRFeatureH feature, const ResultCell& cell, std::string& text) {
    switch (cell.kind) {
    case Kind::Null: OGR_F_SetFieldNull(feature, field); return;
    case Kind::Integer:
    case Kind::Real: writeNumber(feature, cell, text); return;
    case Kind::Text: // dates and times too: the driver reads their fixed form
        text = cell.bytes;
        setText(feature, text);
        return;
    case Kind::Bytes:
    case Kind::Geometry: writeBytes(feature, cell, text); return;
    }
}

/// The layer that is being written.
class LayerWriter {
public:
    LayerWriter(ResultRows& rows, const ResultFormat& format, const QString& path, const QString& layerName,
                bool keepsBlobs)
        : rows_(rows), format_(format), keepsBlobs_(keepsBlobs), driver_(GDALGetDriverByName(format.driver)),
          temporaryFiles_(path) {
        createLayer(path, layerName);
        createFields();
    }

    WrittenLayer writeRows();

private:
    void createLayer(const QString& path, const QString& layerName);
    void createFields();
    void createField(std::size_t column, dp::AttributeDefinitionPointer attribute);
    void writeRow(const std::vector<ResultCell>& cells);
    void writeGeometry(OGRFeatureH feature, const ResultCell& cell) const;

    GdalErrorScope errors_;
    ResultRows& rows_;
    const ResultFormat& format_;
    const bool keepsBlobs_;
    const GDALDriverH driver_;
    const TemporaryFilesBeside temporaryFiles_;
    const ThreadOption withoutWaiting_{"OGR_SQLITE_SYNCHRONOUS", "OFF"}; // nobody knows the file yet
    DatasetHandle dataset_;
    OGRLayerH layer_ = nullptr;
    OGRwkbGeometryType type_ = wkbNone;
    WrittenLayer written_;
    std::vector<FieldWriter> fields_;
    std::string text_;
};

void LayerWriter::createLayer(const QString& path, const QString& layerName) {
    const int position = rows_.geometryColumn();
    if (format_.needsGeometry && position < 0) {
        throw std::runtime_error(Texts::tr("в ответе нет геометрии, без неё файл .%1 не бывает")
                                     .arg(QLatin1String(format_.suffix))
                                     .toStdString());
    }
    auto datasetOptions = optionList(format_.datasetOptions);
    // SQLite writes by itself, and sees to its failures.
    const QByteArray target = lists(driver_, GDAL_DMD_EXTENSIONS, "gpkg") ? path.toUtf8() : checkedPath(path);
    dataset_.reset(GDALCreate(driver_, target.constData(), 0, 0, 0, GDT_Unknown, datasetOptions.List()));
    if (!dataset_) {
        errors_.raise(Texts::tr("файл не создаётся"));
    }
    ReferenceHandle reference;
    if (position >= 0) {
        const ResultColumn& column = rows_.columns()[static_cast<std::size_t>(position)];
        type_ = layerType(column, GDALGetMetadataItem(driver_, "DCAP_CURVE_GEOMETRIES", nullptr) != nullptr);
        reference = referenceOf(column.coordSystem);
        if (!reference && format_.undefinedSystem) {
            reference.reset(OSRNewSpatialReference(format_.undefinedSystem));
        }
    }
    auto layerOptions = optionList(format_.layerOptions);
    if (position >= 0 && format_.indexLosesRows &&
        rows_.columns()[static_cast<std::size_t>(position)].hasNulls) {
        layerOptions.SetNameValue("SPATIAL_INDEX", "NO");
    }
    layer_ = GDALDatasetCreateLayer(dataset_.get(), layerName.toUtf8().constData(), reference.get(), type_,
                                    layerOptions.List());
    if (!layer_) {
        errors_.raise(Texts::tr("слой не создаётся"));
    }
}

void LayerWriter::createFields() {
    QStringList names;
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < rows_.columns().size(); ++i) {
        if (static_cast<int>(i) != rows_.geometryColumn()) {
            columns.push_back(i);
            names += rows_.columns()[i].name;
        }
    }
    const QStringList distinct = dp::distinctNames(names, format_.mostNameBytes);
    QStringList shortened;
    for (int i = 0; i < distinct.size(); ++i) {
        const std::size_t column = columns[static_cast<std::size_t>(i)];
        createField(column, rows_.columns()[column].attribute(distinct[i]));
        if (format_.mostNameBytes != 0 && distinct[i] != names[i]) {
            shortened += Texts::tr("«%1» → «%2»").arg(names[i], distinct[i]);
        }
    }
    if (!shortened.isEmpty()) {
        written_.notes +=
            Texts::tr("имена столбцов в этом формате не длиннее %1 байт: %2")
                .arg(QString::number(format_.mostNameBytes), shortened.join(QStringLiteral(", ")));
    }
}

void LayerWriter::createField(std::size_t column, dp::AttributeDefinitionPointer attribute) {
    const auto& simple = static_cast<const dp::SimpleAttributeDefinition&>(*attribute);
    const bool becomesText = rows_.columns()[column].geometryKinds != 0 && !keepsBlobs_;
    FieldKind kind = supportedKind(driver_, fieldKind(becomesText ? QMetaType::QString : attribute->type()));
    RealForm form{simple.length(), simple.precision()};
    if (kind.type == OFTReal && format_.realWidth != 0 && form.width == 0) {
        const auto fitting = realForm(rows_.columns()[column], format_.realWidth);
        kind = fitting ? kind : FieldKind{OFTString, OFSTNone};
        form = fitting.value_or(form);
    }
    const FieldHandle field(OGR_Fld_Create(attribute->name().toUtf8().constData(), kind.type));
    OGR_Fld_SetSubType(field.get(), kind.subType);
    OGR_Fld_SetWidth(field.get(), form.width);
    OGR_Fld_SetPrecision(field.get(), form.decimals);
    if (OGR_L_CreateField(layer_, field.get(), TRUE) != OGRERR_NONE) {
        errors_.raise(Texts::tr("поле «%1» не создаётся").arg(attribute->name()));
    }
    const int position = OGR_FD_GetFieldCount(OGR_L_GetLayerDefn(layer_)) - 1;
    fields_.push_back({column, position, kind.type, keepsBlobs_, rows_.columns()[column].coordSystem.get(),
                       format_.mostTextBytes});
    written_.attributes += std::move(attribute);
}

void LayerWriter::writeGeometry(OGRFeatureH feature, const ResultCell& cell) const {
    OGRGeometryH geometry = nullptr;
    if (OGR_G_CreateFromWkb(cell.bytes.data(), nullptr, &geometry, static_cast<int>(cell.bytes.size())) !=
        OGRERR_NONE) {
        errors_.raise(Texts::tr("геометрия не записывается"));
    }
    if (OGR_GT_Flatten(type_) != wkbUnknown && OGR_G_GetGeometryType(geometry) != type_) {
        geometry = OGR_G_ForceTo(geometry, type_, nullptr);
    }
    OGR_F_SetGeometryDirectly(feature, geometry);
}

void LayerWriter::writeRow(const std::vector<ResultCell>& cells) {
    const FeatureHandle feature(OGR_F_Create(OGR_L_GetLayerDefn(layer_)));
    for (FieldWriter& field : fields_) {
        field.write(feature.get(), cells[field.column], text_);
    }
    if (const int position = rows_.geometryColumn(); position >= 0) {
        const ResultCell& cell = cells[static_cast<std::size_t>(position)];
        if (cell.kind == Kind::Geometry) {
            writeGeometry(feature.get(), cell);
        }
    }
    if (OGR_L_CreateFeature(layer_, feature.get()) != OGRERR_NONE) {
        errors_.raise(Texts::tr("запись не добавляется"));
    }
}

WrittenLayer LayerWriter::writeRows() {
    const work::Cancellation cancellation;
    const bool hasTransactions = GDALDatasetTestCapability(dataset_.get(), ODsCTransactions) != 0;
    if (hasTransactions && GDALDatasetStartTransaction(dataset_.get(), FALSE) != OGRERR_NONE) {
        errors_.raise(Texts::tr("слой не записывается"));
    }
    rows_.forEachRow([&](const std::vector<ResultCell>& cells) {
        writeRow(cells);
        return !cancellation.isRequested();
    });
    if (cancellation.isRequested()) {
        throw std::runtime_error(Texts::tr("прервано").toStdString());
    }
    if (hasTransactions) {
        GDALFlushCache(dataset_.get()); // what the driver holds back belongs into the transaction
    }
    errors_.raiseIfFailed(Texts::tr("слой не записывается"));
    if (hasTransactions && GDALDatasetCommitTransaction(dataset_.get()) != OGRERR_NONE) {
        errors_.raise(Texts::tr("слой не записывается"));
    }
    dataset_.reset(); // many drivers write only now
    errors_.raiseIfFailed(Texts::tr("слой не записывается"));
    for (const FieldWriter& field : fields_) {
        if (field.cutTexts != 0) {
            written_.notes += Texts::tr("столбец «%1»: текстов, от которых осталось начало в %2 байт: %3")
                                  .arg(rows_.columns()[field.column].name)
                                  .arg(format_.mostTextBytes)
                                  .arg(field.cutTexts);
        }
    }
    return std::move(written_);
}

} // namespace

WrittenLayer writeLayer(ResultRows& rows, const ResultFormat& format, const QString& path,
                        const QString& layerName, bool keepsBlobs) {
    registerDrivers();
    return LayerWriter(rows, format, path, layerName, keepsBlobs).writeRows();
}

} // namespace orvane::files
