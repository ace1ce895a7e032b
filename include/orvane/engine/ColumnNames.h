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

/// Two hidden columns that have a row's geometry as the first and as the second operand of a relation:
/// `a.first = b.second` under the collation of a RelationName says that the relation holds, and can be looked
/// up in either table. The values are the bytes of the geometry's blob as a text: SQLite compares nothing
/// else by a collation.
constexpr QUuid FirstOperandColumnUuid(0xe2a91d57, 0x43c0, 0x4f6b, 0x91, 0x0d, 0x7a, 0x5e, 0x1c, 0xb8, 0x26,
                                       0xf3);
constexpr QUuid SecondOperandColumnUuid(0xe3b02c68, 0x54d1, 0x407c, 0xa2, 0x1e, 0x8b, 0x6f, 0x2d, 0xc9, 0x37,
                                        0x04);

/// The column names, made once.
ORVANE_ENGINE_EXPORT const std::wstring& geometryColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& styleColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& originColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& distanceColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& firstOperandColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& secondOperandColumnName();

} // namespace orvane::engine
