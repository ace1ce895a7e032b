#include "host/adaptor/module/TableEdit.h"

#include "platform/geometry/shapes/Geometry.h"
#include "platform/utils/DateTimes.h"
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

/// Where a value goes.
struct Target {
    QString table;
    const dp::AttributeDefinition& attribute;
};

[[noreturn]] void refuse(const Target& target, const QString& expected, sqlite3_value* value) {
    throw EditError(
        QCoreApplication::translate("orvane::adaptor", "Таблица %0, столбец %1: ожидается %2, а не «%3»")
            .arg(target.table, target.attribute.name(), expected, valueText(value))
            .toStdString());
}

QVariant wholeNumber(const Target& target, sqlite3_value* value, qint64 least, qint64 most) {
    const int type = sqlite3_value_numeric_type(value);
    const qint64 number = sqlite3_value_int64(value);
    const bool whole = type == SQLITE_INTEGER ||
                       (type == SQLITE_FLOAT && static_cast<double>(number) == sqlite3_value_double(value));
    if (!whole || number < least || number > most) {
        refuse(target,
               QCoreApplication::translate("orvane::adaptor", "целое число от %0 до %1").arg(least).arg(most),
               value);
    }
    return number;
}

template<class Type>
QVariant wholeNumber(const Target& target, sqlite3_value* value) {
    return wholeNumber(target, value, std::numeric_limits<Type>::min(), std::numeric_limits<Type>::max());
}

QVariant realNumber(const Target& target, sqlite3_value* value) {
    const int type = sqlite3_value_numeric_type(value);
    if (type != SQLITE_INTEGER && type != SQLITE_FLOAT) {
        refuse(target, QCoreApplication::translate("orvane::adaptor", "число"), value);
    }
    return sqlite3_value_double(value);
}

/// A value that is read from an ISO text.
template<class Read>
QVariant moment(const Target& target, sqlite3_value* value, Read read, const QString& expected) {
    const bool isText = sqlite3_value_type(value) == SQLITE_TEXT;
    const auto parsed = read(isText ? valueText(value) : QString());
    if (!parsed.isValid()) {
        refuse(target, expected, value);
    }
    return parsed;
}

QVariant plainValue(const Target& target, sqlite3_value* value) {
    switch (target.attribute.type()) {
    case QMetaType::Bool: return wholeNumber(target, value, 0, 1).toLongLong() != 0;
    case QMetaType::Short: return wholeNumber<short>(target, value);
    case QMetaType::Int: return wholeNumber<int>(target, value);
    case QMetaType::LongLong: return wholeNumber<qint64>(target, value);
    case QMetaType::Float:
    case QMetaType::Double: return realNumber(target, value);
    case QMetaType::QDate:
        return moment(
            target, value, [](const QString& text) { return QDate::fromString(text, Qt::ISODate); },
            QCoreApplication::translate("orvane::adaptor", "дата yyyy-MM-dd"));
    case QMetaType::QTime:
        return moment(
            target, value, [](const QString& text) { return QTime::fromString(text, Qt::ISODate); },
            QCoreApplication::translate("orvane::adaptor", "время hh:mm:ss.zzz"));
    case QMetaType::QDateTime:
        return moment(target, value, &utils::dateTimeOfText,
                      QCoreApplication::translate("orvane::adaptor", "дата и время yyyy-MM-dd hh:mm:ss.zzz"));
    case QMetaType::QByteArray:
        return QByteArray(static_cast<const char*>(sqlite3_value_blob(value)), sqlite3_value_bytes(value));
    default: break;
    }
    if (sqlite3_value_type(value) == SQLITE_BLOB) {
        refuse(target, QCoreApplication::translate("orvane::adaptor", "текст"), value);
    }
    QString text = valueText(value);
    const auto* simple = dynamic_cast<const dp::SimpleAttributeDefinition*>(&target.attribute);
    const int most = simple ? simple->length() : 0;
    if (most > 0 && text.size() > most && text.toUcs4().size() > most) {
        refuse(target, QCoreApplication::translate("orvane::adaptor", "текст до %0 символов").arg(most),
               value);
    }
    return text;
}

QVariant geometryValue(const Target& target, sqlite3_value* value, engine::EngineCache& cache) {
    std::shared_ptr<const geometry::Geometry> geometry;
    if (sqlite3_value_type(value) == SQLITE_BLOB) {
        const void* data = sqlite3_value_blob(value);
        geometry =
            cache.geometryInfo(data, static_cast<unsigned>(sqlite3_value_bytes(value)), false).geometry();
    }
    if (!geometry) {
        refuse(target, QCoreApplication::translate("orvane::adaptor", "геометрия"), value);
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

std::vector<int> TableEdit::assign(dp::Feature& feature, std::span<sqlite3_value*> values) {
    const auto& columns = table_.declaration().columns();
    std::vector<int> assigned;
    for (std::size_t i = 0; i < columns.size() && i < values.size(); ++i) {
        const TableDeclaration::Column& column = columns[i];
        sqlite3_value* value = values[i];
        if (column.attribute < 0 || sqlite3_value_nochange(value)) {
            continue;
        }
        assigned.push_back(column.attribute);
        const Target target{table_.name(), *feature.schema().at(column.attribute)};
        if (sqlite3_value_type(value) == SQLITE_NULL) {
            continue; // as the feature has it already
        }
        feature.setAttribute(column.attribute, column.kind == TableDeclaration::Kind::Geometry
                                                   ? geometryValue(target, value, table_.cache())
                                                   : plainValue(target, value));
    }
    return assigned;
}

sqlite3_int64 TableEdit::insert(std::span<sqlite3_value*> values) {
    dp::Table& table = table_.table();
    dp::Feature feature(table.schema(), dp::FeatureId());
    assign(feature, values);
    return table_.cache().assignIdToInt(inTable(table_.name(), [&] { return table.insertFeature(feature); }));
}

void TableEdit::update(sqlite3_int64 rowNumber, std::span<sqlite3_value*> values) {
    dp::Table& table = table_.table();
    dp::Feature changes(table.schema(), featureId(rowNumber));
    const std::vector<int> positions = assign(changes, values);
    inTable(table_.name(), [&] { table.updateAttributes(changes, positions); });
}

void TableEdit::remove(sqlite3_int64 rowNumber) {
    inTable(table_.name(), [&] { table_.table().deleteFeature(featureId(rowNumber)); });
}

} // namespace orvane::adaptor
