#pragma once

#include "engine/indices/IndexMatching.h"

#include <QString>
#include <QVariant>

namespace orvane::engine {

/// "i" and the number: the table of an index.
QString indexTable(int index);
/// "c" and the position: the column of an attribute.
QString indexColumn(qint32 attribute);
/// The operator of a comparison, with the blanks it needs; empty for an invalid code.
QString operatorText(quint8 operation);

/// The value as an SQL literal, by its type; what has no type of its own in SQL is a text. A text ends before
/// its first zero character, and a number that is none is Null: neither can be written.
QString sqlLiteral(const QVariant& value);

/// The value as the literal shows it to SQL. Texts are put into `memory`, which they need as long as the cell
/// is used.
dp::Cell operandOf(const QVariant& value, std::string& memory);

/// "Create Temporary Table i1(c3 Integer,c5 Varchar(30) Collate Locale,id Int,Primary Key(c3,c5,id));"
/// Attributes that are not simple are left out; empty when none is left.
QString createIndexSql(const QString& table, const std::vector<EngineIndices::Column>& columns,
                       const dp::TableSchema& schema, const QString& collate);

} // namespace orvane::engine
