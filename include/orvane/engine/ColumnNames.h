#pragma once

#include <orvane/engine/Export.h>

#include <QUuid>

#include <string>

namespace orvane::engine {

/// Every table of the engine database keeps its geometry and its style in columns of these names, written as
/// 32 lower-case hexadecimal digits.
constexpr QUuid GeometryColumnUuid(0xcd750f8a, 0x9a2b, 0x4fac, 0x9b, 0x9b, 0x05, 0xeb, 0x53, 0x79, 0x5d,
                                   0x97);
constexpr QUuid StyleColumnUuid(0xd39f65c3, 0x1997, 0x4aa1, 0x98, 0xa8, 0x99, 0xa8, 0x9b, 0x12, 0x40, 0xc7);

/// Two hidden columns of a table whose rows can be had in the order of their distance from a place: the place
/// (`Is` what Nearness makes of it, and no other comparison), and the distance from it.
constexpr QUuid OriginColumnUuid(0xad1f3c86, 0x20b7, 0x4e9a, 0x8f, 0x42, 0x6b, 0x91, 0xd3, 0x57, 0x0e, 0xa8);
constexpr QUuid DistanceColumnUuid(0xb7c4e0b2, 0x6a35, 0x4d18, 0xb3, 0x7e, 0x04, 0xf8, 0x2c, 0x61, 0x9d,
                                   0x5b);

/// The column names, made once.
ORVANE_ENGINE_EXPORT const std::wstring& geometryColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& styleColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& originColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& distanceColumnName();

} // namespace orvane::engine
