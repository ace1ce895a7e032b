#include "engine/indices/IndexSql.h"

#include "engine/expression/StoredValue.h"
#include "platform/decimal/QDecNumber.h"
#include "platform/utils/MetaTypes.h"
#include <orvane/engine/functions/Converters.h>

#include <array>
#include <cmath>

namespace orvane::engine {

namespace {

QString quoted(QString text) {
    const int end = text.indexOf(QChar(0));
    return escapeString(end < 0 ? std::move(text) : text.left(end), '\'');
}

QString realLiteral(double value) {
    if (std::isnan(value)) {
        return QStringLiteral("Null");
    }
    if (std::isinf(value)) {
        return value < 0 ? QStringLiteral("-9e999") : QStringLiteral("9e999");
    }
    constexpr int digits = 18;
    return QString::number(value, 'g', digits);
}

QString decimalLiteral(const QDecNumber& value) {
    const QString text = decNumberToString(value);
    const bool isFinite = text.back().isDigit();
    return isFinite ? text : realLiteral(value.toDouble());
}

QString columnDeclaration(const dp::SimpleAttributeDefinition& attribute, const QString& collate) {
    const QString type = sqlName(attribute.type());
    if (attribute.type() == QMetaType::QString) {
        const QString collation = collate.isEmpty() ? QString() : QStringLiteral("Collate ") + collate;
        return type + QStringLiteral("(%1) %2").arg(QString::number(attribute.length()), collation);
    }
    if (attribute.type() == qMetaTypeId<QDecNumber>()) {
        return type + QStringLiteral("(%1, %2) ").arg(attribute.length()).arg(attribute.precision());
    }
    return type;
}

} // namespace

QString indexTable(int index) {
    return QLatin1Char('i') + QString::number(index);
}

QString indexColumn(qint32 attribute) {
    return QLatin1Char('c') + QString::number(attribute);
}

QString operatorText(quint8 operation) {
    static const std::array<QString, EngineIndices::Glob + 1> texts = {
        QString(),
        QStringLiteral("="),
        QStringLiteral(" Is "),
        QStringLiteral(">"),
        QStringLiteral("<="),
        QStringLiteral("<"),
        QStringLiteral(">="),
        QStringLiteral("<>"),
        QStringLiteral(" Is Not "),
        QStringLiteral(" Like "),
        QStringLiteral(" Glob "),
    };
    return operation < texts.size() ? texts[operation] : QString();
}

QString sqlLiteral(const QVariant& value) {
    switch (value.userType()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::ULong:
    case QMetaType::UShort: return value.toString();
    case QMetaType::UChar: return QString::number(value.toUInt()); // its toString is the character
    case QMetaType::Double: return realLiteral(value.toDouble());
    case QMetaType::QDate: return quoted(toString(value.toDate()));
    case QMetaType::QTime: return quoted(toString(value.toTime()));
    case QMetaType::QDateTime: return quoted(toString(value.toDateTime()));
    default: break;
    }
    if (value.userType() == qMetaTypeId<QDecNumber>()) {
        return decimalLiteral(value.value<QDecNumber>());
    }
    return quoted(value.toString());
}

dp::Cell operandOf(const QVariant& value, std::string& memory) {
    if (value.userType() == qMetaTypeId<QDecNumber>()) {
        const auto number = value.value<QDecNumber>();
        const QString text = decNumberToString(number);
        return text.back().isDigit() ? storedValue(text, Affinity::Numeric, memory)
                                     : dp::Cell::ofReal(number.toDouble());
    }
    if (isStandardType(value.userType()) && value.userType() != QMetaType::Float) {
        return storedValue(value, Affinity::Blob, memory);
    }
    return storedValue(value.toString(), Affinity::Text, memory);
}

QString createIndexSql(const QString& table, const std::vector<EngineIndices::Column>& columns,
                       const dp::TableSchema& schema, const QString& collate) {
    QString declarations;
    QString key;
    for (const EngineIndices::Column& column : columns) {
        const int position = static_cast<int>(column.attribute);
        const auto* attribute =
            dynamic_cast<const dp::SimpleAttributeDefinition*>(schema.at(position).constData());
        if (!attribute) {
            continue;
        }
        const QString separator = key.isEmpty() ? QStringLiteral("(") : QStringLiteral(",");
        key += separator + indexColumn(position);
        declarations +=
            separator + indexColumn(position) + QLatin1Char(' ') + columnDeclaration(*attribute, collate);
    }
    if (key.isEmpty()) {
        return {};
    }
    return QStringLiteral("Create Temporary Table ") + table + declarations +
           QStringLiteral(",id Int,Primary Key") + key + QStringLiteral(",id));");
}

} // namespace orvane::engine
