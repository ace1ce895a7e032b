#include "platform/sql/lexing/SqlError.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <QCoreApplication>

#include <utility>

namespace orvane::sql {

SqlError::SqlError(std::wstring message, std::optional<ErrorPlace> place)
    : message_(std::move(message)), utf8_(toUtf8(message_)), place_(std::move(place)) {}

SqlError::~SqlError() = default;
SqlSyntaxError::~SqlSyntaxError() = default;

UnknownFunction::UnknownFunction(std::wstring name)
    : SqlError(toSqlString(
          QCoreApplication::translate("orvane::sql", "неизвестная функция «%0»").arg(fromSqlString(name)))),
      name_(std::move(name)) {}

UnknownFunction::~UnknownFunction() = default;

SelectionTableIsAbsent::SelectionTableIsAbsent()
    : SqlError(toSqlString(QCoreApplication::translate(
          "orvane::sql", "запрос обращается к выборке, но ни один объект не выбран"))) {}

SelectionTableIsAbsent::~SelectionTableIsAbsent() = default;
GeneralSyntaxError::~GeneralSyntaxError() = default;
UnexpectedParseResult::~UnexpectedParseResult() = default;

} // namespace orvane::sql
