#pragma once

#include "platform/geometry/shapes/Geometry.h"
#include "platform/work/Cancellation.h"
#include <orvane/engine/SpatialiteBlob.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvane::engine {

/// The points, lines and areas of many geometries, one behind the other as the parts of a SpatiaLite blob.
/// No row has memory of its own, so that millions of them are written quickly and gone at once.
class GatheredParts {
public:
    /// Takes a point, a line or an area as it stands. False for any other kind of blob, compressed and
    /// big-endian ones, and for one that is not sound. An empty one is taken and leaves nothing.
    bool add(const SpatialiteHeader& header);
    /// Takes the parts of a geometry without curves, through all levels.
    void add(const geometry::Geometry& linear);

    std::size_t count() const { return ends_.size(); }
    /// Bytes.
    std::size_t size() const { return bytes_.size(); }

    /// One part as a geometry without coordinate system.
    geometry::GeometryPtr part(std::size_t index) const;
    /// The blob of all parts: what was added when that was one geometry, else a multi-part geometry of their
    /// kind, or a collection. z and m are 0 where only others have them. Empty when there is no part. Throws
    /// work::Cancelled.
    std::string collected(int srid, const work::Cancellation& cancellation) const;
    /// The blob of the line through all positions of points and lines, in their order. Empty when there are
    /// areas or fewer than two positions. Throws work::Cancelled.
    std::string line(int srid, const work::Cancellation& cancellation) const;

private:
    std::string_view bytesOf(std::size_t index) const;
    void addPart(std::uint32_t kind, std::string_view content);
    void countGeometry(std::uint32_t kind);
    std::uint32_t kindOfAll() const;

    std::string bytes_;             ///< of each part its mark, kind and content, little-endian
    std::vector<std::size_t> ends_; ///< of the parts in the bytes
    geometry::Envelope envelope_;
    std::size_t geometries_ = 0;
    std::uint32_t firstKind_ = 0; ///< of the first geometry, without its dimensions
    bool hasKind_[4] = {};        ///< by the kind of a part
    bool hasCollections_ = false;
    bool isMixed_ = false;                                       ///< parts of different dimensions
    geometry::Dimensions dimensions_ = geometry::Dimensions::XY; ///< all that any part has
};

} // namespace orvane::engine
