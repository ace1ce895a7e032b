#include "host/adaptor/TableEdit.h"

#include "platform/geometry/Geometry.h"
#include <orvane/engine/EngineCache.h>

#include <QCoreApplication>
#include <QDateTime>

#include <limits>

namespace orvane::adaptor {

namespace {

using dp::EditError;

QString valueText(sqlite3_value* value) {
    if (sqlite3_value_type(value) == SQLITE_BLOB) {
        return QStringLiteral("X'...'");
    }
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value)));
}

[[noreturn]] void refuse(const dp::AttributeDefinition& attribute, const QString& expected,
                         sqlite3_value* value) {
    throw EditError(QCoreApplication::translate("orvane::adaptor", "Столбец %0: ожидается %1, а не «%2»")
                        .arg(attribute.name(), expected, valueText(value))
                        .toStdString());
}

QVariant wholeNumber(const dp::AttributeDefinition& attribute, sqlite3_value* value, qint64 least,
                     qint64 most) {
    const int type = sqlite3_value_numeric_type(value);
    const qint64 number = sqlite3_value_int64(value);
    const bool whole = type == SQLITE_INTEGER ||
                       (type == SQLITE_FLOAT && static_cast<double>(number) == sqlite3_value_double(value));
    if (!whole || number < least || number > most) {
        refuse(attribute,
               QCoreApplication::translate("orvane::adaptor", "целое число от %0 до %1").arg(least).arg(most),
               value);
    }
    return number;
}

template<class Type>
QVariant wholeNumber(const dp::AttributeDefinition& attribute, sqlite3_value* value) {
    return wholeNumber(attribute, value, std::numeric_limits<Type>::min(), std::numeric_limits<Type>::max());
}

QVariant realNumber(const dp::AttributeDefinition& attribute, sqlite3_value* value) {
    const int type = sqlite3_value_numeric_type(value);
    if (type != SQLITE_INTEGER && type != SQLITE_FLOAT) {
        refuse(attribute, QCoreApplication::translate("orvane::adaptor", "число"), value);
    }
    return sqlite3_value_double(value);
}

/// A value that Qt reads from an ISO text.
template<class Moment>
QVariant moment(const dp::AttributeDefinition& attribute, sqlite3_value* value, const QString& expected) {
    const Moment parsed = sqlite3_value_type(value) == SQLITE_TEXT
                              ? Moment::fromString(valueText(value), Qt::ISODate)
                              : Moment();
    if (!parsed.isValid()) {
        refuse(attribute, expected, value);
    }
    return parsed;
}

QVariant plainValue(const dp::AttributeDefinition& attribute, sqlite3_value* value) {
    switch (attribute.type()) {
    case QMetaType::Bool: return wholeNumber(attribute, value, 0, 1).toLongLong() != 0;
    case QMetaType::Short: return wholeNumber<short>(attribute, value);
    case QMetaType::Int: return wholeNumber<int>(attribute, value);
    case QMetaType::LongLong: return wholeNumber<qint64>(attribute, value);
    case QMetaType::Float:
    case QMetaType::Double: return realNumber(attribute, value);
    case QMetaType::QDate:
        return moment<QDate>(attribute, value,
                             QCoreApplication::translate("orvane::adaptor", "дата yyyy-MM-dd"));
    case QMetaType::QTime:
        return moment<QTime>(attribute, value,
                             QCoreApplication::translate("orvane::adaptor", "время hh:mm:ss.zzz"));
    case QMetaType::QDateTime:
        return moment<QDateTime>(
            attribute, value,
            QCoreApplication::translate("orvane::adaptor", "дата и время yyyy-MM-dd hh:mm:ss.zzz"));
    case QMetaType::QByteArray:
        return QByteArray(static_cast<const char*>(sqlite3_value_blob(value)), sqlite3_value_bytes(value));
    default: break;
    }
    if (sqlite3_value_type(value) == SQLITE_BLOB) {
        refuse(attribute, QCoreApplication::translate("orvane::adaptor", "текст"), value);
    }
    return valueText(value);
}

QVariant geometryValue(const dp::AttributeDefinition& attribute, sqlite3_value* value,
                       engine::EngineCache& cache) {
    std::shared_ptr<const geometry::Geometry> geometry;
    if (sqlite3_value_type(value) == SQLITE_BLOB) {
        const void* data = sqlite3_value_blob(value);
        geometry =
            cache.geometryInfo(data, static_cast<unsigned>(sqlite3_value_bytes(value)), false).geometry();
    }
    if (!geometry) {
        refuse(attribute, QCoreApplication::translate("orvane::adaptor", "геометрия"), value);
    }
    return QVariant::fromValue(geometry);
}

} // namespace

dp::FeatureId TableEdit::featureId(sqlite3_int64 rowNumber) const {
    dp::FeatureId id = table_.cache().intToId(rowNumber);
    if (!id.isValid()) {
        throw EditError(QCoreApplication::translate("orvane::adaptor", "В таблице %0 нет строки %1")
                            .arg(table_.name())
                            .arg(rowNumber)
                            .toStdString());
    }
    return id;
}

void TableEdit::assign(dp::Feature& feature, std::span<sqlite3_value*> values, bool changedOnly) {
    const auto& columns = table_.declaration().columns();
    for (std::size_t i = 0; i < columns.size() && i < values.size(); ++i) {
        const TableDeclaration::Column& column = columns[i];
        sqlite3_value* value = values[i];
        if (column.attribute < 0 || (changedOnly && sqlite3_value_nochange(value))) {
            continue;
        }
        const dp::AttributeDefinition& attribute = *feature.schema().at(column.attribute);
        if (sqlite3_value_type(value) == SQLITE_NULL) {
            feature.setAttribute(column.attribute, QVariant());
        } else if (column.kind == TableDeclaration::Kind::Geometry) {
            feature.setAttribute(column.attribute, geometryValue(attribute, value, table_.cache()));
        } else {
            feature.setAttribute(column.attribute, plainValue(attribute, value));
        }
    }
}

sqlite3_int64 TableEdit::insert(std::span<sqlite3_value*> values) {
    dp::Table& table = table_.table();
    dp::Feature feature(table.schema(), dp::FeatureId());
    assign(feature, values, false);
    return table_.cache().assignIdToInt(table.insertFeature(feature));
}

void TableEdit::update(sqlite3_int64 rowNumber, std::span<sqlite3_value*> values) {
    dp::Table& table = table_.table();
    const dp::FeaturePtr feature = table.feature(featureId(rowNumber));
    if (!feature) {
        throw EditError(QCoreApplication::translate("orvane::adaptor", "В таблице %0 нет строки %1")
                            .arg(table_.name())
                            .arg(rowNumber)
                            .toStdString());
    }
    assign(*feature, values, true);
    table.updateFeature(*feature);
}

void TableEdit::remove(sqlite3_int64 rowNumber) {
    table_.table().deleteFeature(featureId(rowNumber));
}

} // namespace orvane::adaptor
