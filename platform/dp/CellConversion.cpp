#include "platform/dp/CellConversion.h"

#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/utils/DateTimes.h"

#include <QDateTime>

#include <limits>
#include <stdexcept>

namespace orvane::dp {

namespace {

QVariant fromInteger(qint64 value, int type) {
    const bool fitsInt = value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
    switch (type) {
    case QMetaType::Bool: return value != 0;
    case QMetaType::Int: return fitsInt ? QVariant(static_cast<int>(value)) : QVariant(value);
    case QMetaType::Double: return static_cast<double>(value);
    case QMetaType::ULongLong: return value < 0 ? QVariant(value) : QVariant(static_cast<quint64>(value));
    default: return value;
    }
}

QVariant fromText(const QString& text, int type) {
    const auto orText = [&text](const auto& value) {
        return value.isValid() ? QVariant(value) : QVariant(text);
    };
    switch (type) {
    case QMetaType::QDate: return orText(QDate::fromString(text, Qt::ISODate));
    case QMetaType::QTime: return orText(QTime::fromString(text, Qt::ISODateWithMs));
    case QMetaType::QDateTime: return orText(utils::dateTimeOfText(text));
    default: return text;
    }
}

QVariant fromWkb(std::string_view wkb, const AttributeDefinition& attribute) {
    const auto* definition = dynamic_cast<const GeometryAttributeDefinition*>(&attribute);
    try {
        const std::shared_ptr<const geometry::Geometry> geometry =
            geometry::GeometryFactory::fromWkb(wkb, definition ? definition->coordSystem() : nullptr);
        return QVariant::fromValue(geometry);
    } catch (const std::runtime_error&) {
        return {};
    }
}

QByteArray bytes(std::string_view view) {
    return {view.data(), static_cast<int>(view.size())};
}

} // namespace

QVariant toVariant(const Cell& cell, const AttributeDefinition& attribute) {
    switch (cell.type()) {
    case CellType::Null: break;
    case CellType::Integer: return fromInteger(cell.integer(), attribute.type());
    case CellType::Real: return cell.real();
    case CellType::Text:
        return fromText(QString::fromUtf8(cell.view().data(), static_cast<int>(cell.view().size())),
                        attribute.type());
    case CellType::Bytes: return bytes(cell.view());
    case CellType::Wkb: return fromWkb(cell.view(), attribute);
    }
    return {};
}

} // namespace orvane::dp
