#include "platform/sql/parsing/SqlRuntime.h"

#include "platform/sql/lexing/SqlStrings.h"

namespace orvane::sql {

SqlRuntime::SqlRuntime(QObject* parent) : QObject(parent) {}

SqlRuntime::~SqlRuntime() = default;

void SqlRuntime::addBareFunction(const QString& name) {
    bareFunctions_.insert(toLowercase(toSqlString(name)));
}

bool SqlRuntime::isBareFunction(const std::wstring& lowercaseName) const {
    return bareFunctions_.count(lowercaseName) != 0;
}

} // namespace orvane::sql
