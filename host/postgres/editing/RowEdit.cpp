#include "host/postgres/editing/RowEdit.h"

#include "host/postgres/conditions/ScanQuery.h"
#include "platform/cs/CoordSystem.h"
#include "platform/dp/Table.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Geometry.h"
#include "platform/utils/Quoting.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cmath>
#include <cstdio>

namespace orvane::postgres {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::postgres)
};

/// As the server reads it, whatever type the column has.
std::string textOf(const QVariant& value, const std::string& columnName) {
    switch (value.userType()) {
    case QMetaType::Bool: return value.toBool() ? "true" : "false";
    case QMetaType::Float:
    case QMetaType::Double: {
        const double number = value.toDouble();
        if (std::isinf(number)) {
            return number > 0 ? "Infinity" : "-Infinity";
        }
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", number);
        return text;
    }
    case QMetaType::QDate: return value.toDate().toString(Qt::ISODate).toStdString();
    case QMetaType::QTime: return value.toTime().toString(Qt::ISODateWithMs).toStdString();
    case QMetaType::QDateTime:
        return value.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")).toStdString();
    case QMetaType::QByteArray: return "\\x" + value.toByteArray().toHex().toStdString();
    default: break;
    }
    const QString text = value.toString();
    if (text.contains(QChar(0))) {
        throw dp::EditError(Texts::tr("столбец %0: PostgreSQL не хранит текстов с нулевым знаком")
                                .arg(QString::fromStdString(columnName))
                                .toStdString());
    }
    return text.toStdString();
}

} // namespace

std::string RowEdit::valueOf(const dp::Feature& feature, int position,
                             std::vector<Argument>& arguments) const {
    const ColumnDescription& each = column(position);
    const QVariant value = feature.getAttribute(position);
    if (!value.isValid()) {
        return "Null";
    }
    if (isGeometry(each.kind)) {
        return geometryOf(feature, position, arguments);
    }
    arguments.emplace_back(textOf(value, each.name));
    const std::string argument = '$' + std::to_string(arguments.size());
    // A list is shown as JSON; what is converted by nobody the server reads as the column's type.
    return each.kind == ValueKind::List ? "Array(Select pg_catalog.jsonb_array_elements_text(" + argument +
                                              "::jsonb))::text[]::" + each.type
                                        : argument;
}

std::string RowEdit::geometryOf(const dp::Feature& feature, int position,
                                std::vector<Argument>& arguments) const {
    const ColumnDescription& each = column(position);
    auto shape = feature.getAttribute(position).value<std::shared_ptr<const geometry::Geometry>>();
    const auto& target =
        static_cast<const dp::GeometryAttributeDefinition&>(*table_.schema->at(position)).coordSystem();
    if (shape && target && shape->coordSystem() && !shape->coordSystem()->equals(*target)) {
        shape = shape->transformed(target);
    }
    if (!shape) {
        return "Null";
    }
    const QByteArray wkb = geometry::GeometryFactory::toWkb(shape, QSysInfo::LittleEndian);
    arguments.emplace_back("\\x" + wkb.toHex().toStdString());
    const std::string made = table_.postgis + "ST_GeomFromWKB($" + std::to_string(arguments.size()) +
                             "::bytea, " + std::to_string(each.srid) + ")";
    const std::string fitting = each.isMulti ? table_.postgis + "ST_Multi(" + made + ")" : made;
    return each.kind == ValueKind::Geography ? fitting + "::" + table_.postgis + "geography" : fitting;
}

Command RowEdit::insertion(const dp::Feature& feature) const {
    Command command;
    std::string names, values;
    for (int i = 0; i < feature.numAttributes(); ++i) {
        if (feature.getAttribute(i).isValid()) {
            names += (names.empty() ? "" : ", ") + utils::sqlIdentifier(column(i).name);
            values += (values.empty() ? "" : ", ") + valueOf(feature, i, command.arguments);
        }
    }
    command.sql = "Insert Into " + table_.sqlName() + " As t" +
                  (names.empty() ? " Default Values" : " (" + names + ") Values (" + values + ")") +
                  " Returning " + ScanQuery(table_).key();
    return command;
}

Command RowEdit::update(const dp::Feature& changes, const std::vector<int>& positions) const {
    Command command;
    std::string assignments;
    for (const int position : positions) {
        assignments += (assignments.empty() ? "" : ", ") + utils::sqlIdentifier(column(position).name) +
                       " = " + valueOf(changes, position, command.arguments);
    }
    const std::string condition = ScanQuery(table_).condition({changes.id()}, command.arguments);
    command.sql = assignments.empty() // still an error where there is no such row
                      ? "Select 1 From " + table_.sqlName() + " t Where " + condition
                      : "Update " + table_.sqlName() + " As t Set " + assignments + " Where " + condition +
                            " Returning 1";
    return command;
}

Command RowEdit::removal(const dp::FeatureId& id) const {
    Command command;
    const std::string condition = ScanQuery(table_).condition({id}, command.arguments);
    command.sql = "Delete From " + table_.sqlName() + " As t Where " + condition + " Returning 1";
    return command;
}

} // namespace orvane::postgres
