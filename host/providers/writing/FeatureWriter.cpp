#include "host/providers/writing/FeatureWriter.h"

#include "host/providers/datasets/GdalHandles.h"
#include "platform/cs/CoordSystem.h"
#include "platform/dp/Table.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Geometry.h"
#include "platform/utils/DateTimes.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <limits>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::FeatureWriter)
};

using GeometryValue = std::shared_ptr<const geometry::Geometry>;

void writeInteger(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
                  const QVariant& value) {
    bool isNumber = false;
    const qlonglong number = value.toLongLong(&isNumber);
    const bool isWhole =
        value.userType() != QMetaType::Double || static_cast<double>(number) == value.toDouble();
    const bool isNarrow = attribute.type() == QMetaType::Int;
    const bool isInside =
        !isNarrow || (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max());
    if (!isNumber || !isWhole || !isInside) {
        raiseUnfit(attribute, value);
    }
    OGR_F_SetFieldInteger64(feature, column.field, number);
}

void writeReal(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
               const QVariant& value) {
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber) {
        raiseUnfit(attribute, value);
    }
    OGR_F_SetFieldDouble(feature, column.field, number);
}

void writeMoment(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
                 const QVariant& value) {
    QDate date(1, 1, 1);
    QTime time(0, 0);
    const bool isText = value.userType() == QMetaType::QString;
    switch (column.reading) {
    case LayerColumn::Reading::Date: date = value.toDate(); break;
    case LayerColumn::Reading::Time:
        time = isText ? QTime::fromString(value.toString(), Qt::ISODateWithMs) : value.toTime();
        break;
    default: {
        const auto moment = isText ? utils::dateTimeOfText(value.toString()) : value.toDateTime();
        date = moment.date();
        time = moment.time();
    }
    }
    if (!date.isValid() || !time.isValid()) {
        raiseUnfit(attribute, value);
    }
    OGR_F_SetFieldDateTimeEx(feature, column.field, date.year(), date.month(), date.day(), time.hour(),
                             time.minute(),
                             static_cast<float>(time.second()) + static_cast<float>(time.msec()) / 1000, 0);
}

void writeList(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
               const QVariant& value) {
    const auto document = QJsonDocument::fromJson(value.toString().toUtf8());
    if (!document.isArray()) {
        raiseUnfit(attribute, value);
    }
    CPLStringList texts;
    for (const auto& item : document.array()) {
        texts.AddString(item.toVariant().toString().toUtf8().constData());
    }
    OGR_F_SetFieldStringList(feature, column.field, texts.List());
}

void writeGeometry(OGRFeatureH feature, const dp::AttributeDefinition& attribute, const QVariant& value) {
    const auto wkb = geometry::GeometryFactory::toWkb(geometryFor(attribute, value), QSysInfo::LittleEndian);
    OGRGeometryH made = nullptr;
    if (OGR_G_CreateFromWkb(wkb.constData(), nullptr, &made, wkb.size()) != OGRERR_NONE) {
        raiseUnfit(attribute, value);
    }
    OGR_F_SetGeometryDirectly(feature, made);
}

} // namespace

void raiseUnfit(const dp::AttributeDefinition& attribute, const QVariant& value) {
    throw dp::EditError(Texts::tr("Значение «%1» не подходит полю «%2»")
                            .arg(value.toString(), attribute.name())
                            .toStdString());
}

GeometryValue geometryFor(const dp::AttributeDefinition& attribute, const QVariant& value) {
    auto shape = value.value<GeometryValue>();
    if (!shape) {
        raiseUnfit(attribute, value);
    }
    const auto& target = static_cast<const dp::GeometryAttributeDefinition&>(attribute).coordSystem();
    const auto source = shape->coordSystem();
    try {
        return target && source && !target->equals(*source) ? shape->transformed(target) : shape;
    } catch (const std::exception& error) {
        throw dp::EditError(error.what());
    }
}

void writeValue(OGRFeatureH feature, const LayerColumn& column, const dp::AttributeDefinition& attribute,
                const QVariant& value) {
    using Reading = LayerColumn::Reading;
    if (!value.isValid() || value.isNull()) {
        if (column.source == LayerColumn::Source::Geometry) {
            OGR_F_SetGeometryDirectly(feature, nullptr);
        } else {
            OGR_F_SetFieldNull(feature, column.field);
        }
        return;
    }
    switch (column.reading) {
    case Reading::Integer: writeInteger(feature, column, attribute, value); return;
    case Reading::Real: writeReal(feature, column, attribute, value); return;
    case Reading::Date:
    case Reading::Time:
    case Reading::DateTime: writeMoment(feature, column, attribute, value); return;
    case Reading::Bytes: {
        const auto bytes = value.toByteArray();
        OGR_F_SetFieldBinary(feature, column.field, bytes.size(), bytes.constData());
        return;
    }
    case Reading::List: writeList(feature, column, attribute, value); return;
    case Reading::Geometry: writeGeometry(feature, attribute, value); return;
    case Reading::Text:
        OGR_F_SetFieldString(feature, column.field, value.toString().toUtf8().constData());
        return;
    }
}

} // namespace orvane::files
