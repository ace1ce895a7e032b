#pragma once

#include <cstdint>

namespace orvane::postgres {

/// How the server sends the values of a column, and what becomes of them.
enum class ValueKind : std::uint8_t {
    Boolean,
    Integer2,
    Integer4,
    Integer8,
    Unsigned4,
    Real4,
    Real8,
    Numeric,      ///< exact digits, delivered as the nearest real
    WholeNumeric, ///< digits that an integer holds
    Date,
    Time,
    Moment,      ///< a date-time without a zone
    LocalMoment, ///< a moment, shown in the session's time zone
    Text,
    PaddedText, ///< filled with blanks that count for nothing
    Uuid,
    Json, ///< binary JSON
    Bytes,
    Shown, ///< whatever else, as the server writes it
    List,  ///< an array, as JSON
    Geometry,
    Geography,
};

constexpr bool isGeometry(ValueKind kind) {
    return kind == ValueKind::Geometry || kind == ValueKind::Geography;
}

} // namespace orvane::postgres
