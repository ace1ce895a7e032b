#include "host/adaptor/indices/SpatialIndex.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/relations/Relations.h"
#include "platform/geometry/shapes/Shapes.h"
#include "platform/work/Progress.h"

#include <QCoreApplication>

#define BOOST_ALLOW_DEPRECATED_HEADERS // Boost's own, of each other
#include <boost/geometry/algorithms/distance.hpp>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/geometry/strategies/strategies.hpp>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <stdexcept>

namespace orvane::adaptor {

namespace {

namespace bg = boost::geometry;
using geometry::GeometryPtr;
using Corner = bg::model::point<double, 2, bg::cs::cartesian>;
using Box = bg::model::box<Corner>;
using Node = std::pair<Box, std::uint32_t>;

/// Positions in the geometries that an index keeps decoded: some 200 megabytes with what GEOS makes of them.
constexpr std::uint64_t mostWeight = 2'000'000;
constexpr unsigned rowsBetweenChecks = 1024;

struct RelationName {
    const char* function;
    SpatialRelation relation;
};
constexpr RelationName relationNames[] = {
    {"ST_Intersects", SpatialRelation::Intersects},
    {"Intersects", SpatialRelation::Intersects},
    {"ST_Contains", SpatialRelation::Contains},
    {"Contains", SpatialRelation::Contains},
    {"ContainsEntirely", SpatialRelation::Contains},
    {"ST_Within", SpatialRelation::Within},
    {"Within", SpatialRelation::Within},
    {"EntirelyWithin", SpatialRelation::Within},
    {"ContainsCentroid", SpatialRelation::ContainsCentroid},
    {"CentroidWithin", SpatialRelation::CentroidWithin},
    {"Covers", SpatialRelation::Covers},
    {"ST_Covers", SpatialRelation::Covers},
    {"CoveredBy", SpatialRelation::CoveredBy},
    {"ST_CoveredBy", SpatialRelation::CoveredBy},
    {"Equals", SpatialRelation::Equals},
    {"ST_Equals", SpatialRelation::Equals},
    {"Touches", SpatialRelation::Touches},
    {"ST_Touches", SpatialRelation::Touches},
    {"Crosses", SpatialRelation::Crosses},
    {"ST_Crosses", SpatialRelation::Crosses},
    {"Overlaps", SpatialRelation::Overlaps},
    {"ST_Overlaps", SpatialRelation::Overlaps},
    {"MayMeet", SpatialRelation::MayMeet},
    {"IsNear", SpatialRelation::Near},
};

/// Reads the position of a little-endian two-dimensional point, the form in which providers deliver points.
bool readPosition(std::string_view wkb, double& x, double& y) {
    constexpr char head[] = {1, 1, 0, 0, 0};
    constexpr std::size_t size = sizeof head + 2 * sizeof(double);
    if (wkb.size() != size || std::memcmp(wkb.data(), head, sizeof head) != 0) {
        return false;
    }
    std::memcpy(&x, wkb.data() + sizeof head, sizeof x);
    std::memcpy(&y, wkb.data() + sizeof head + sizeof x, sizeof y);
    return true;
}

std::optional<bool> holdsForPosition(SpatialRelation relation, double x, double y,
                                     const geometry::Geometry& b) {
    switch (relation) {
    case SpatialRelation::Intersects: return geometry::intersectsPosition(b, x, y);
    case SpatialRelation::Within:
    case SpatialRelation::CentroidWithin: return geometry::containsPosition(b, x, y);
    default: return std::nullopt;
    }
}

std::optional<bool> holdsOnPosition(SpatialRelation relation, const geometry::Geometry& a, double x,
                                    double y) {
    switch (relation) {
    case SpatialRelation::Intersects: return geometry::intersectsPosition(a, x, y);
    case SpatialRelation::Contains:
    case SpatialRelation::ContainsCentroid: return geometry::containsPosition(a, x, y);
    default: return std::nullopt;
    }
}

/// Of two in one coordinate system.
bool holdsInPlace(SpatialRelation relation, const geometry::Geometry& a, const geometry::Geometry& b) {
    if (const auto* position = dynamic_cast<const geometry::Point*>(&b); position && !position->isEmpty()) {
        if (const auto known = holdsOnPosition(relation, a, position->x(), position->y())) {
            return *known;
        }
    }
    return adaptor::holds(relation, a, b);
}

Box boxOf(const geometry::Envelope& envelope) {
    return {Corner(envelope.minX, envelope.minY), Corner(envelope.maxX, envelope.maxY)};
}

SpatialIndex::Candidate candidateOf(const Node& node) {
    return {node.second, bg::get<0>(node.first.min_corner()), bg::get<1>(node.first.min_corner())};
}

} // namespace

struct SpatialIndex::Tree {
    bg::index::rtree<Node, bg::index::rstar<16>> nodes;
    std::vector<Node> found; ///< these two are reused from search to search
    std::vector<Candidate> candidates;
};

std::optional<SpatialRelation> spatialRelationOf(const char* functionName) {
    for (const RelationName& each : relationNames) {
        if (sqlite3_stricmp(functionName, each.function) == 0) {
            return each.relation;
        }
    }
    return std::nullopt;
}

bool countsInFirstSystem(SpatialRelation relation) {
    switch (relation) {
    case SpatialRelation::Within:
    case SpatialRelation::CentroidWithin:
    case SpatialRelation::CoveredBy:
    case SpatialRelation::MayMeet:
    case SpatialRelation::Near: return false;
    default: return true;
    }
}

bool holdsVertices(SpatialRelation relation) {
    return relation == SpatialRelation::Within || relation == SpatialRelation::CoveredBy ||
           relation == SpatialRelation::CentroidWithin;
}

SpatialRelation converseOf(SpatialRelation relation) {
    switch (relation) {
    case SpatialRelation::Contains: return SpatialRelation::Within;
    case SpatialRelation::Within: return SpatialRelation::Contains;
    case SpatialRelation::ContainsCentroid: return SpatialRelation::CentroidWithin;
    case SpatialRelation::CentroidWithin: return SpatialRelation::ContainsCentroid;
    case SpatialRelation::Covers: return SpatialRelation::CoveredBy;
    case SpatialRelation::CoveredBy: return SpatialRelation::Covers;
    default: return relation;
    }
}

GeometryPtr decodeWkb(std::string_view wkb, const std::shared_ptr<cs::CoordSystem>& coordSystem) {
    try {
        return geometry::GeometryFactory::fromWkb(wkb, coordSystem);
    } catch (const std::runtime_error&) {
        return nullptr; // counts as no geometry, as everywhere
    }
}

bool holds(SpatialRelation relation, const geometry::Geometry& a, const geometry::Geometry& b) {
    switch (relation) {
    case SpatialRelation::Intersects: return geometry::Intersects(a, b);
    case SpatialRelation::Contains: return geometry::Contains(a, b);
    case SpatialRelation::Within: return geometry::Contains(b, a);
    case SpatialRelation::ContainsCentroid: return geometry::ContainsCentroid(a, b);
    case SpatialRelation::CentroidWithin: return geometry::ContainsCentroid(b, a);
    case SpatialRelation::Covers: return relates(geometry::Relation::Covers, a, b);
    case SpatialRelation::CoveredBy: return relates(geometry::Relation::Covers, b, a);
    case SpatialRelation::Equals: return relates(geometry::Relation::Equals, a, b);
    case SpatialRelation::Touches: return relates(geometry::Relation::Touches, a, b);
    case SpatialRelation::Crosses: return relates(geometry::Relation::Crosses, a, b);
    case SpatialRelation::Overlaps: return relates(geometry::Relation::Overlaps, a, b);
    case SpatialRelation::MayMeet:
    case SpatialRelation::Near: return true;
    }
    return false;
}

bool holds(SpatialRelation relation, std::string_view wkb,
           const std::shared_ptr<cs::CoordSystem>& coordSystem, const geometry::Geometry& b) {
    double x = 0, y = 0;
    if (readPosition(wkb, x, y)) {
        if (const auto known = holdsForPosition(relation, x, y, b)) {
            return *known;
        }
    }
    const GeometryPtr a = decodeWkb(wkb, coordSystem);
    return a && holdsInPlace(relation, *a, b);
}

SpatialIndex::~SpatialIndex() = default;

/// In the coordinate system of the index; null for what is no geometry, or has no image there.
GeometryPtr SpatialIndex::decode(const dp::Cell& cell, const dp::Table& table) const {
    if (cell.type() != dp::CellType::Wkb) {
        return nullptr;
    }
    const auto own = table.coordSystem();
    const GeometryPtr decoded = decodeWkb(cell.view(), own);
    return !decoded || own == system_ ? decoded : decoded->transformed(system_);
}

SpatialIndex::SpatialIndex(dp::Table& table, std::shared_ptr<cs::CoordSystem> system,
                           const work::Cancellation& cancellation)
    : system_(std::move(system)), tree_(std::make_unique<Tree>()) {
    const int attribute = table.schema()->geometryIndex();
    dp::ScanRequest request;
    request.attributes = {attribute};
    const bool isInPlace = system_ == table.coordSystem();
    const bool mayBeDegrees = !system_ || system_->isGeographic();
    const auto rows = table.openCursor(request);
    work::Progress progress(
        QCoreApplication::translate("orvane::adaptor", "R-дерево таблицы %0").arg(table.name()),
        table.featureCount().value_or(0));
    // What the bytes of a geometry tell; decoding it is several times dearer.
    const auto ofBytes = [&](const dp::Cell& cell) -> std::optional<geometry::Envelope> {
        const auto told = isInPlace && cell.type() == dp::CellType::Wkb ? geometry::envelopeOfWkb(cell.view())
                                                                        : std::nullopt;
        const bool mayBulge =
            told && mayBeDegrees && !told->isEmpty() && geometry::mayBulgeBeyond(bulge_, *told);
        return mayBulge ? std::nullopt : told;
    };
    std::vector<Node> nodes;
    for (unsigned row = 1; rows->next(); ++row) {
        if (row % rowsBetweenChecks == 0) {
            cancellation.check();
            progress.advance(rowsBetweenChecks);
        }
        const dp::Cell cell = rows->cell(attribute);
        geometry::Envelope envelope;
        double x = 0, y = 0;
        const bool position = cell.type() == dp::CellType::Wkb && readPosition(cell.view(), x, y);
        if (position && isInPlace) {
            envelope.add(x, y);
        } else if (const auto told = ofBytes(cell)) {
            envelope = *told;
            arePositions_ = false;
        } else if (const GeometryPtr decoded = decode(cell, table)) {
            envelope = decoded->envelope();
            arePositions_ = arePositions_ && position;
            if (mayBeDegrees) {
                bulge_ = std::max(bulge_, geometry::geodesicBulge(*decoded));
            }
        } else {
            missing_.push_back(rows->featureId()); // what cannot be read counts as none
            continue;
        }
        if (envelope.isEmpty()) {
            empty_.push_back(rows->featureId()); // stands in no relation to anything
            continue;
        }
        nodes.emplace_back(boxOf(envelope), static_cast<std::uint32_t>(ids_.size()));
        ids_.push_back(rows->featureId());
        isPosition_.push_back(position);
    }
    tree_->nodes = {nodes.begin(), nodes.end()}; // packed
}

GeometryPtr SpatialIndex::geometryOf(const Candidate& candidate, dp::Table& table) {
    const std::uint32_t entry = candidate.position;
    if (isPosition_[entry]) {
        auto point = std::make_shared<geometry::Point>(candidate.x, candidate.y);
        point->setCoordSystem(system_);
        return point;
    }
    if (geometries_.empty()) {
        geometries_.resize(ids_.size());
    }
    if (geometries_[entry]) {
        return geometries_[entry];
    }
    if (const auto fetched = fetched_.find(entry); fetched != fetched_.end()) {
        return fetched->second;
    }
    const int attribute = table.schema()->geometryIndex();
    dp::ScanRequest request;
    request.attributes = {attribute};
    request.ids.emplace({ids_[entry]});
    const auto rows = table.openCursor(request);
    return rows->next() ? keep(entry, decode(rows->cell(attribute), table)) : nullptr;
}

/// Keeps a geometry for later searches, up to a bound.
GeometryPtr SpatialIndex::keep(std::uint32_t entry, GeometryPtr decoded) {
    if (decoded && keptWeight_ + decoded->weight() <= mostWeight) {
        keptWeight_ += decoded->weight();
        geometries_[entry] = decoded;
    }
    return decoded;
}

/// Reads the geometries of several features at once: there are tables that are read to their end for each
/// request. One without numbers for identifiers is asked for them one by one, later.
void SpatialIndex::fetch(std::span<const Candidate> candidates, dp::Table& table) {
    fetched_.clear();
    if (geometries_.empty()) {
        geometries_.resize(ids_.size());
    }
    std::unordered_map<std::int64_t, std::uint32_t> wanted;
    dp::ScanRequest request;
    auto& ids = request.ids.emplace();
    for (const Candidate& candidate : candidates) {
        const std::uint32_t entry = candidate.position;
        if (isPosition_[entry] || geometries_[entry]) {
            continue;
        }
        if (ids_[entry].value().userType() != QMetaType::LongLong) {
            return;
        }
        wanted.emplace(ids_[entry].value().toLongLong(), entry);
        ids.push_back(ids_[entry]);
    }
    if (wanted.size() < 2) {
        return;
    }
    const int attribute = table.schema()->geometryIndex();
    request.attributes = {attribute};
    for (const auto rows = table.openCursor(request); rows->next();) {
        const auto number = rows->integerId();
        const auto found = wanted.find(number ? *number : rows->featureId().value().toLongLong());
        if (found != wanted.end()) {
            fetched_[found->second] = keep(found->second, decode(rows->cell(attribute), table));
        }
    }
}

bool SpatialIndex::holds(SpatialRelation relation, const Candidate& candidate, const GeometryPtr& b,
                         dp::Table& table) {
    if (isPosition_[candidate.position]) {
        if (const auto known = holdsForPosition(relation, candidate.x, candidate.y, *b)) {
            return *known;
        }
    }
    const GeometryPtr a = geometryOf(candidate, table);
    return a && holdsInPlace(relation, *a, *b);
}

void SpatialIndex::search(SpatialRelation relation, const GeometryPtr& b, dp::Table& table,
                          std::vector<dp::FeatureId>& found) {
    const geometry::Envelope envelope = b->envelope();
    if (envelope.isEmpty()) {
        return;
    }
    auto& nodes = tree_->found;
    nodes.clear();
    tree_->nodes.query(bg::index::intersects(boxOf(envelope)), std::back_inserter(nodes));
    constexpr std::size_t mostFetched = 4096;
    auto& candidates = tree_->candidates;
    for (auto next = nodes.begin(); next != nodes.end();) {
        candidates.clear();
        for (; next != nodes.end() && candidates.size() < mostFetched; ++next) {
            candidates.push_back(candidateOf(*next));
        }
        if (relation != SpatialRelation::MayMeet && !arePositions_ && candidates.size() > 1) {
            fetch(candidates, table);
        }
        for (const Candidate& candidate : candidates) {
            if (relation == SpatialRelation::MayMeet || holds(relation, candidate, b, table)) {
                found.push_back(id(candidate));
            }
        }
    }
    fetched_.clear();
}

void SpatialIndex::searchEnvelope(const geometry::Envelope& envelope,
                                  std::vector<dp::FeatureId>& found) const {
    auto& nodes = tree_->found;
    nodes.clear();
    tree_->nodes.query(bg::index::intersects(boxOf(envelope)), std::back_inserter(nodes));
    for (const Node& node : nodes) {
        found.push_back(ids_[node.second]);
    }
}

std::optional<std::vector<SpatialIndex::Candidate>>
SpatialIndex::candidatesNear(const geometry::Geometry& centre, const geometry::Nearness& nearness,
                             const dp::Table& table) const {
    const auto windows =
        geometry::neighbourhood(centre, nearness, {table.coordSystem(), arePositions_, bulge_});
    if (!windows) {
        return std::nullopt;
    }
    auto& nodes = tree_->found;
    nodes.clear();
    for (const geometry::Envelope& window : *windows) {
        tree_->nodes.query(bg::index::intersects(boxOf(window)), std::back_inserter(nodes));
    }
    if (windows->size() > 1) {
        const auto before = [](const Node& a, const Node& b) { return a.second < b.second; };
        const auto same = [](const Node& a, const Node& b) { return a.second == b.second; };
        std::sort(nodes.begin(), nodes.end(), before);
        nodes.erase(std::unique(nodes.begin(), nodes.end(), same), nodes.end());
    }
    std::vector<Candidate> candidates;
    candidates.reserve(nodes.size());
    std::transform(nodes.begin(), nodes.end(), std::back_inserter(candidates), candidateOf);
    return candidates;
}

bool SpatialIndex::searchNear(const geometry::Geometry& centre, const geometry::Nearness& nearness,
                              const dp::Table& table, std::vector<dp::FeatureId>& found) const {
    const auto candidates = candidatesNear(centre, nearness, table);
    if (!candidates) {
        return false;
    }
    for (const Candidate& candidate : *candidates) {
        found.push_back(id(candidate));
    }
    // The measures of one kind alone say -1 of an empty geometry, which is less than any distance.
    if (nearness.kind != geometry::DistanceKind::General) {
        found.insert(found.end(), empty_.begin(), empty_.end());
    }
    return true;
}

std::vector<SpatialIndex::Candidate> SpatialIndex::closest(const geometry::Envelope& envelope,
                                                           std::size_t count) const {
    auto& nodes = tree_->found;
    nodes.clear();
    tree_->nodes.query(bg::index::nearest(boxOf(envelope), static_cast<unsigned>(count)),
                       std::back_inserter(nodes));
    std::vector<Candidate> candidates;
    std::transform(nodes.begin(), nodes.end(), std::back_inserter(candidates), candidateOf);
    return candidates;
}

} // namespace orvane::adaptor
