#pragma once

#include <QUuid>

namespace orvane::engine {

// The names of the geometry and the style column in the tables that the engine declares: 32 hexadecimal
// digits that no attribute of a user's table carries, QUuid::toString(QUuid::Id128).

inline const QUuid GeometryColumnUuid(0xcd750f8a, 0x9a2b, 0x4fac, 0x9b, 0x9b, 0x05, 0xeb, 0x53, 0x79, 0x5d,
                                      0x97);
inline const QUuid StyleColumnUuid(0xd39f65c3, 0x1997, 0x4aa1, 0x98, 0xa8, 0x99, 0xa8, 0x9b, 0x12, 0x40,
                                   0xc7);

} // namespace orvane::engine
