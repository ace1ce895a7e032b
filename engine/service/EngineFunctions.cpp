#include <orvane/Engine.h>

#include "engine/service/EngineInternal.h"

#include <QBitArray>
#include <QSqlQuery>

#include <map>

namespace orvane {

namespace {

using TypeMasks = QFlags<sql::FunctionInfo::TypeMask>;

constexpr int operatorBits = 44;

} // namespace

std::set<QString, engine::caseInsensitiveLess> Engine::functionSet(TypeMasks mask) const {
    std::map<QString, TypeMasks, engine::caseInsensitiveLess> types;
    for (const sql::FunctionInfo& info : sql::functionInfos()) {
        types[QString::fromUtf8(info.name)] = TypeMasks(info.types);
    }
    std::set<QString, engine::caseInsensitiveLess> names;
    QSqlQuery query(QStringLiteral("Pragma function_list;"), internal_->database());
    while (query.next()) {
        const QString name = query.value(0).toString();
        if (names.count(name) != 0) {
            continue;
        }
        if (const auto found = types.find(name); found != types.end() && (found->second & mask)) {
            names.insert(found->first);
        }
    }
    return names;
}

QStringList Engine::functionList(TypeMasks mask) const {
    QStringList names;
    for (const QString& name : functionSet(mask)) {
        names << name;
    }
    return names;
}

sql::FunctionSet Engine::sqlFunctionSet(TypeMasks mask) {
    sql::FunctionSet functions;
    functions.reserve(sql::functionNameLimit);
    functions.fillByMask(mask, true);
    return functions;
}

sql::OperatorSet Engine::operatorList() const {
    QBitArray codes(operatorBits, true);
    for (const int noOperator :
         {0, static_cast<int>(sql::OperationCode::Case), static_cast<int>(sql::OperationCode::Cast)}) {
        codes.clearBit(noOperator);
    }
    return sql::OperatorSet(codes);
}

} // namespace orvane
