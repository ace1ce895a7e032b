#include "host/providers/conditions/TreeFile.h"

#include <ogr_api.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>

namespace orvane::files {

namespace {

static_assert(std::endian::native == std::endian::little, "the trees are read as they lie in the files");

constexpr int deepest = 64; ///< levels of a tree that is not damaged

template<typename Value>
bool read(VSILFILE* file, Value* values, std::size_t count = 1) {
    return VSIFReadL(values, sizeof(Value), count, file) == count;
}

/// A number within bytes; none beyond their end.
template<typename Number>
std::optional<Number> numberAt(const std::vector<unsigned char>& bytes, std::uint64_t at) {
    if (at > bytes.size() || bytes.size() - at < sizeof(Number)) {
        return std::nullopt;
    }
    Number number;
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
}

/// A field of the table that is the root of a FlatBuffers buffer: the given one where it is not stored.
template<typename Number>
std::optional<Number> fieldOf(const std::vector<unsigned char>& buffer, unsigned field, Number otherwise) {
    const auto table = numberAt<std::uint32_t>(buffer, 0);
    const auto back = table ? numberAt<std::int32_t>(buffer, *table) : std::nullopt;
    if (!back) {
        return std::nullopt;
    }
    const std::uint64_t vtable = static_cast<std::uint64_t>(std::int64_t{*table} - *back);
    const auto size = numberAt<std::uint16_t>(buffer, vtable);
    const std::uint64_t slot = 2 * sizeof(std::uint16_t) + field * sizeof(std::uint16_t);
    if (!size) {
        return std::nullopt;
    }
    const auto offset =
        slot < *size ? numberAt<std::uint16_t>(buffer, vtable + slot) : std::optional<std::uint16_t>(0);
    return offset && *offset != 0 ? numberAt<Number>(buffer, *table + *offset)
           : offset               ? std::optional(otherwise)
                                  : std::nullopt;
}

std::string besideWith(const std::string& shapefile, const char* ending) {
    const std::size_t point = shapefile.rfind('.');
    return shapefile.substr(0, point) + ending;
}

std::optional<VSIStatBufL> statusOf(const std::string& path) {
    VSIStatBufL status{};
    return VSIStatL(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

} // namespace

struct TreeFile::Search {
    File file;
    const geometry::Envelope& window;
    std::size_t most;
    std::vector<std::int64_t> found;
};

std::unique_ptr<const TreeFile> TreeFile::of(GDALDatasetH dataset, OGRLayerH layer) {
    const std::string_view driver = GDALGetDriverShortName(GDALGetDatasetDriver(dataset));
    const std::string path = GDALGetDescription(dataset);
    if (driver != "ESRI Shapefile" && driver != "FlatGeobuf") {
        return nullptr;
    }
    // GDAL takes folders of files for one data set.
    const auto status = statusOf(path);
    if (!status || VSI_ISDIR(status->st_mode) || !OGR_L_TestCapability(layer, OLCRandomRead)) {
        return nullptr;
    }
    const std::int64_t rows = OGR_L_GetFeatureCount(layer, FALSE);
    return driver == "FlatGeobuf" ? packedTreeOf(path, rows) : quadtreeOf(path);
}

/// The tree is of as many shapes as the file has, and not older than they are.
std::unique_ptr<const TreeFile> TreeFile::quadtreeOf(const std::string& shapefile) {
    const std::string path = besideWith(shapefile, ".qix");
    const auto tree = statusOf(path);
    const auto shapes = statusOf(shapefile);
    const auto places = statusOf(besideWith(shapefile, ".shx"));
    if (!tree || !shapes || !places || tree->st_mtime < shapes->st_mtime ||
        tree->st_mtime < places->st_mtime) {
        return nullptr;
    }
    constexpr std::int64_t headOfPlaces = 100, place = 8;
    const File file(VSIFOpenL(path.c_str(), "rb"));
    unsigned char mark[8];
    std::int32_t head[2]; // number of shapes, depth
    constexpr unsigned char littleEndian = 1;
    if (!file || !read(file.get(), mark, sizeof mark) || std::memcmp(mark, "SQT", 3) != 0 ||
        mark[3] != littleEndian || !read(file.get(), head, 2) || head[0] < 0 ||
        std::int64_t{places->st_size} != headOfPlaces + place * head[0]) {
        return nullptr;
    }
    auto opened = std::make_unique<TreeFile>();
    opened->path_ = path;
    opened->rows_ = head[0];
    opened->start_ = sizeof mark + sizeof head;
    return opened;
}

/// https://flatgeobuf.org: eight bytes, the size of the header, the header, the tree, the features in its
/// order.
std::unique_ptr<const TreeFile> TreeFile::packedTreeOf(const std::string& path, std::int64_t rows) {
    constexpr unsigned countField = 8, nodeSizeField = 9;
    constexpr std::uint32_t largestHeader = 16 << 20;
    constexpr std::uint64_t nodeBytes = 40;
    const File file(VSIFOpenL(path.c_str(), "rb"));
    unsigned char mark[8];
    std::uint32_t size = 0;
    if (!file || !read(file.get(), mark, sizeof mark) || std::memcmp(mark, "fgb", 3) != 0 ||
        !read(file.get(), &size) || size > largestHeader) {
        return nullptr;
    }
    std::vector<unsigned char> header(size);
    if (!read(file.get(), header.data(), size)) {
        return nullptr;
    }
    const auto count = fieldOf<std::uint64_t>(header, countField, 0);
    const auto nodeSize = fieldOf<std::uint16_t>(header, nodeSizeField, 16);
    const auto status = statusOf(path);
    if (!count || !nodeSize || *nodeSize < 2 || *count == 0 || rows < 0 ||
        *count != static_cast<std::uint64_t>(rows) || !status ||
        *count > static_cast<std::uint64_t>(status->st_size) / nodeBytes) {
        return nullptr;
    }
    auto opened = std::make_unique<TreeFile>();
    opened->path_ = path;
    opened->rows_ = rows;
    opened->start_ = sizeof mark + sizeof size + size;
    opened->nodeSize_ = *nodeSize;
    std::vector<std::uint64_t> sizes{*count};
    std::uint64_t nodes = *count;
    do {
        sizes.push_back((sizes.back() + *nodeSize - 1) / *nodeSize);
        nodes += sizes.back();
    } while (sizes.back() > 1);
    for (const std::uint64_t each : sizes) {
        opened->levels_.emplace_back(nodes - each, nodes);
        nodes -= each;
    }
    return opened;
}

std::optional<std::vector<std::int64_t>> TreeFile::search(const geometry::Envelope& window,
                                                          std::size_t most) const {
    Search search{File(VSIFOpenL(path_.c_str(), "rb")), window, most, {}};
    if (!search.file || VSIFSeekL(search.file.get(), start_, SEEK_SET) != 0 ||
        !(levels_.empty() ? searchQuadtree(search, 0) : searchPackedTree(search))) {
        return std::nullopt;
    }
    auto& found = search.found;
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return std::move(search.found);
}

/// A node: the bytes of its children, its box, the shapes that are in it and in none of them, and its
/// children.
bool TreeFile::searchQuadtree(Search& search, int depth) const {
    VSILFILE* const file = search.file.get();
    std::int32_t childBytes = 0, shapes = 0, children = 0;
    double box[4];
    if (depth > deepest || !read(file, &childBytes) || !read(file, box, 4) || !read(file, &shapes) ||
        childBytes < 0 || shapes < 0 || shapes > rows_) {
        return false;
    }
    if (!search.window.intersects({box[0], box[1], box[2], box[3]})) {
        const auto rest = static_cast<vsi_l_offset>(childBytes) +
                          sizeof(std::int32_t) * (static_cast<vsi_l_offset>(shapes) + 1);
        return VSIFSeekL(file, VSIFTellL(file) + rest, SEEK_SET) == 0;
    }
    std::vector<std::int32_t> ids(static_cast<std::size_t>(shapes));
    if (search.found.size() + ids.size() > search.most ||
        (shapes > 0 && !read(file, ids.data(), ids.size())) || !read(file, &children)) {
        return false;
    }
    search.found.insert(search.found.end(), ids.begin(), ids.end());
    for (std::int32_t child = 0; child < children; ++child) {
        if (!searchQuadtree(search, depth + 1)) {
            return false;
        }
    }
    return true;
}

bool TreeFile::searchPackedTree(Search& search) const {
    struct Node {
        double minX, minY, maxX, maxY;
        std::uint64_t place; ///< of the first child; of leaves, of the feature
    };
    static_assert(sizeof(Node) == 40);
    std::vector<std::pair<std::uint64_t, std::size_t>> open{{0, levels_.size() - 1}};
    std::vector<Node> nodes;
    std::uint64_t visited = 0;
    while (!open.empty()) {
        const auto [first, level] = open.back();
        open.pop_back();
        const auto [begin, end] = levels_[level];
        if (first < begin || first >= end || visited > levels_.front().second) {
            return false; // nodes that lead to others' children
        }
        nodes.resize(std::min(nodeSize_, end - first));
        visited += nodes.size();
        if (VSIFSeekL(search.file.get(), start_ + first * sizeof(Node), SEEK_SET) != 0 ||
            !read(search.file.get(), nodes.data(), nodes.size())) {
            return false;
        }
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const Node& node = nodes[i];
            if (!search.window.intersects({node.minX, node.minY, node.maxX, node.maxY})) {
                continue;
            }
            if (level == 0) {
                search.found.push_back(static_cast<std::int64_t>(first - begin + i));
            } else {
                open.emplace_back(node.place, level - 1);
            }
        }
        if (search.found.size() > search.most) {
            return false;
        }
    }
    return true;
}

} // namespace orvane::files
