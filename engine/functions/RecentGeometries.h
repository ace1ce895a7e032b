#pragma once

#include "GeometryArguments.h"

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::engine {

class EngineCache;

/// Geometries that a statement met lately, decoded and with their prepared forms, by the exact bytes of their
/// blobs: a relation asks about the same few areas row after row. A blob is kept from its second appearance
/// on, so that a scan of different ones costs no copies. Bounded, and gone with the statement.
class RecentGeometries {
public:
    static constexpr int numberInStatement = -20261;

    /// Those of the statement that calls a function. Throws std::bad_alloc.
    static RecentGeometries& ofStatement(sqlite3_context* context);

    /// Null when the cache reads no geometry from the bytes.
    std::shared_ptr<const geometry::Geometry> get(EngineCache& cache, std::string_view blob);
    /// The same geometry in another system, kept as well; null when it has no place there.
    std::shared_ptr<const geometry::Geometry> get(EngineCache& cache, std::string_view blob,
                                                  const std::shared_ptr<cs::CoordSystem>& target);

private:
    struct Entry {
        std::string blob;
        std::shared_ptr<const geometry::Geometry> geometry;
        std::shared_ptr<cs::CoordSystem> target;
        std::shared_ptr<const geometry::Geometry> transformed;
    };
    static constexpr std::size_t entryCount = 1024;
    static constexpr std::size_t mostBytes = std::size_t(64) << 20;

    /// The entry that holds the blob with its geometry; null when it is not kept (yet).
    Entry* find(EngineCache& cache, std::string_view blob,
                std::shared_ptr<const geometry::Geometry>& geometry);
    void clear();

    std::array<std::uint64_t, entryCount> seen_{}; ///< hashes of the bytes met last
    std::array<std::unique_ptr<Entry>, entryCount> entries_;
    std::size_t bytes_ = 0;
};

/// The two geometries, the second in the system of the first, where there is a way; null where one is none.
/// When exactly one carries a coordinate system the other gets it. One that the statement met lately is
/// neither decoded nor transformed again.
GeometryPair recentPair(sqlite3_context* context, sqlite3_value* first, sqlite3_value* second);

} // namespace orvane::engine
