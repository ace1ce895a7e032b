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

/// The column names, made once.
ORVANE_ENGINE_EXPORT const std::wstring& geometryColumnName();
ORVANE_ENGINE_EXPORT const std::wstring& styleColumnName();

} // namespace orvane::engine
