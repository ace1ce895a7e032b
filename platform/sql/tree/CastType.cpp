#include "platform/sql/tree/CastType.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <string_view>
#include <utility>

namespace orvane::sql {

namespace {

/// Of the names for numbers, texts and bytes, SQLite understands each as it is written.
constexpr std::pair<std::wstring_view, CastType> types[] = {{L"integer", CastType::Integer},
                                                            {L"int", CastType::Integer},
                                                            {L"bigint", CastType::Integer},
                                                            {L"smallint", CastType::Integer},
                                                            {L"real", CastType::Real},
                                                            {L"double", CastType::Real},
                                                            {L"double precision", CastType::Real},
                                                            {L"float", CastType::Real},
                                                            {L"numeric", CastType::Numeric},
                                                            {L"decimal", CastType::Numeric},
                                                            {L"text", CastType::Text},
                                                            {L"char", CastType::Text},
                                                            {L"character", CastType::Text},
                                                            {L"varchar", CastType::Text},
                                                            {L"character varying", CastType::Text},
                                                            {L"blob", CastType::Blob},
                                                            {L"date", CastType::Date},
                                                            {L"time", CastType::Time},
                                                            {L"timestamp", CastType::Timestamp}};

} // namespace

std::optional<CastType> findCastType(const std::wstring& name) {
    const std::wstring words = toLowercase(name.substr(0, name.find(L'(')));
    for (const auto& [known, type] : types) {
        if (words == known) {
            return type;
        }
    }
    return std::nullopt;
}

} // namespace orvane::sql
