#pragma once

#include "platform/Export.h"

#include <QString>

#include <cstdint>

namespace orvane::geometry {

/// How a buffer is shaped where it is not straight.
struct BufferOptions {
    enum class Cap : std::uint8_t { Round, Flat, Square };
    enum class Join : std::uint8_t { Round, Mitre, Bevel };
    enum class Side : std::uint8_t { Both, Left, Right };

    static constexpr int mostQuadrantSegments = 200;

    int quadrantSegments = 32; ///< for a quarter of a circle: its area is 0.04 % too small
    Cap cap = Cap::Round;      ///< of lines
    Join join = Join::Round;
    double mitreLimit = 5.0; ///< of the distance, from a vertex to the tip of its mitre
    Side side = Side::Both;  ///< of lines, seen along them
};

/// From "quad_segs=8 endcap=round|flat|square join=round|mitre|bevel mitre_limit=5 side=both|left|right", in
/// any order, whatever the letter case. Throws std::runtime_error that names what is wrong.
ORVANE_PLATFORM_EXPORT BufferOptions bufferOptions(const QString& text);
/// Throws std::runtime_error for less than 1 and more than mostQuadrantSegments.
ORVANE_PLATFORM_EXPORT int quadrantSegments(double count);

} // namespace orvane::geometry
