#include "host/adaptor/declaration/TableDeclaration.h"

#include "platform/utils/MetaTypes.h"
#include "platform/utils/Quoting.h"
#include <orvane/engine/ColumnNames.h>

#include <QMetaType>

namespace orvane::adaptor {

namespace {

/// The fixed column names are hexadecimal digits.
std::string asciiName(const std::wstring& name) {
    std::string ascii;
    for (const wchar_t c : name) {
        ascii.push_back(static_cast<char>(c));
    }
    return ascii;
}

struct TypeName {
    TableDeclaration::Kind kind;
    const char* sql; ///< what stands behind the column's name
};

/// The declared type decides the affinity with which SQLite compares the column. Dates and times are texts of
/// one fixed form, so their binary order is the right one.
TypeName typeName(int metaType) {
    using Kind = TableDeclaration::Kind;
    if (isPlainInt(metaType)) {
        return {Kind::Number, " Integer"};
    }
    switch (metaType) {
    case QMetaType::Bool: return {Kind::Number, " Integer"};
    case QMetaType::Double:
    case QMetaType::Float: return {Kind::Number, " Real"};
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return {Kind::Text, " Text"};
    case QMetaType::QByteArray: return {Kind::Other, " Blob"};
    case QMetaType::QString: return {Kind::Text, " Text Collate Locale"};
    default: return {Kind::Other, " Numeric"};
    }
}

} // namespace

TableDeclaration::TableDeclaration(const dp::TableSchema& schema) {
    sql_ = "Create Table x(";
    for (int position = 0; position < schema.numAttributes(); ++position) {
        const auto* simple =
            dynamic_cast<const dp::SimpleAttributeDefinition*>(schema.at(position).constData());
        if (!simple) {
            continue;
        }
        const TypeName type = typeName(simple->type());
        sql_ += utils::sqlIdentifier(simple->name().toStdString()) + type.sql + ',';
        const auto collation =
            simple->type() == QMetaType::QString ? dp::TextCollation::Locale : dp::TextCollation::Binary;
        columns_.push_back({position, type.kind, collation, simple->isUnique()});
    }
    const int geometry = schema.geometryIndex();
    const int style = schema.styleIndex();
    sql_ += asciiName(engine::geometryColumnName()) + " Blob" + (geometry < 0 ? " Hidden," : ",");
    sql_ += asciiName(engine::styleColumnName()) + " Text" + (style < 0 ? " Hidden," : ",");
    sql_ += asciiName(engine::originColumnName()) + " Blob Hidden,";
    sql_ += asciiName(engine::distanceColumnName()) + " Real Hidden,";
    sql_ += asciiName(engine::firstOperandColumnName()) + " Blob Hidden,";
    sql_ += asciiName(engine::secondOperandColumnName()) + " Blob Hidden)";
    columns_.push_back({geometry, Kind::Geometry});
    columns_.push_back({style, Kind::Style});
    columns_.push_back({-1, Kind::Origin});
    columns_.push_back({-1, Kind::Distance});
    columns_.push_back({-1, Kind::Operand});
    columns_.push_back({-1, Kind::Operand});
}

} // namespace orvane::adaptor
