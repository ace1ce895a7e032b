#include <orvane/engine/ColumnNames.h>

#include "platform/sql/lexing/SqlStrings.h"

namespace orvane::engine {

const std::wstring& geometryColumnName() {
    static const std::wstring name = sql::toSqlString(GeometryColumnUuid.toString(QUuid::Id128));
    return name;
}

const std::wstring& styleColumnName() {
    static const std::wstring name = sql::toSqlString(StyleColumnUuid.toString(QUuid::Id128));
    return name;
}

const std::wstring& originColumnName() {
    static const std::wstring name = sql::toSqlString(OriginColumnUuid.toString(QUuid::Id128));
    return name;
}

const std::wstring& distanceColumnName() {
    static const std::wstring name = sql::toSqlString(DistanceColumnUuid.toString(QUuid::Id128));
    return name;
}

const std::wstring& firstOperandColumnName() {
    static const std::wstring name = sql::toSqlString(FirstOperandColumnUuid.toString(QUuid::Id128));
    return name;
}

const std::wstring& secondOperandColumnName() {
    static const std::wstring name = sql::toSqlString(SecondOperandColumnUuid.toString(QUuid::Id128));
    return name;
}

} // namespace orvane::engine
