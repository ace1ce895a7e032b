#pragma once

#include "platform/dp/ScanRequest.h"

#include <cpl_vsi.h>
#include <gdal.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::files {

/// A spatial index that a format keeps as a tree of its own: the quadtree of a shapefile (".qix"), the packed
/// R-tree in a FlatGeobuf file. GDAL's filter would leave rows out by their exact shape.
class TreeFile {
public:
    /// Null where there is none, or one of other features than the file has now.
    static std::unique_ptr<const TreeFile> of(GDALDatasetH dataset, OGRLayerH layer);

    /// The identifiers of the rows whose boxes meet the window and perhaps of others, ascending; none where
    /// they are more than `most` or the tree is damaged.
    std::optional<std::vector<std::int64_t>> search(const geometry::Envelope& window, std::size_t most) const;

private:
    struct Closer {
        void operator()(VSILFILE* file) const { VSIFCloseL(file); }
    };
    using File = std::unique_ptr<VSILFILE, Closer>;
    struct Search; ///< one walk through the tree

    static std::unique_ptr<const TreeFile> quadtreeOf(const std::string& shapefile);
    static std::unique_ptr<const TreeFile> packedTreeOf(const std::string& file, std::int64_t rows);
    bool searchQuadtree(Search& search, int depth) const;
    bool searchPackedTree(Search& search) const;

    std::string path_;
    std::int64_t rows_ = 0;
    std::uint64_t start_ = 0; ///< of the tree in the file
    /// Of a packed tree: the first node and the one after the last of each level, leaves first.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> levels_;
    std::uint64_t nodeSize_ = 0; ///< children of a node
};

} // namespace orvane::files
