#include "host/adaptor/functions/RetiredFunctions.h"

namespace orvane::adaptor {

namespace {

const RetiredFunction retired[] = {
    {"CastAutomagic", "Cast"},
    {"ElementaryGeometries", "GeometryN"},
    {"ST_Cutter", "Intersection"},
    {"AsX3D", "AsGml"},
    {"ST_AsX3D", "AsGml"},
    {"ST_DrapeLine", nullptr},
    {"ST_DrapeLineExceptions", nullptr},
    {"ST_TransformXY", "Transform"},
    {"ST_TransformXYZ", "Transform"},
    {"TransformXY", "Transform"},
    {"TransformXYZ", "Transform"},
};

void refuse(sqlite3_context* context, int, sqlite3_value**) {
    const auto& function = *static_cast<const RetiredFunction*>(sqlite3_user_data(context));
    sqlite3_result_error(context, refusal(function).c_str(), -1);
}

} // namespace

std::string refusal(const RetiredFunction& function) {
    std::string message = std::string(function.name) + " is not supported";
    if (function.instead != nullptr) {
        message += std::string("; use ") + function.instead;
    }
    return message;
}

std::span<const RetiredFunction> retiredFunctions() {
    return retired;
}

int registerRetiredFunction(sqlite3* database, const RetiredFunction& function, int count) {
    return sqlite3_create_function(database, function.name, count, SQLITE_UTF8,
                                   const_cast<RetiredFunction*>(&function), refuse, nullptr, nullptr);
}

} // namespace orvane::adaptor
