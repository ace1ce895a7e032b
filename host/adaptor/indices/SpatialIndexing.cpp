#include "host/adaptor/indices/SpatialIndexing.h"

#include "platform/cs/CoordSystem.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace orvane::adaptor {

namespace {

/// Coordinate systems that a table is looked at in.
constexpr std::size_t mostElsewhere = 4;
/// What a tree may cost that is made at once, in nanoseconds.
constexpr double smallTree = 2e6;

double rowsOf(const dp::Table& table) {
    return static_cast<double>(table.featureCount().value_or(cost::assumedRows));
}

} // namespace

void SpatialIndexing::follow(const dp::Table& table) {
    if (const std::uint64_t revision = table.revision(); revision_ != revision) {
        tree_.reset();
        elsewhere_.clear();
        spent_ = 0;
        revision_ = revision;
    }
}

SpatialIndex& SpatialIndexing::tree(dp::Table& table, const work::Cancellation& cancellation) {
    use_ = {};
    return makeTree(table, cancellation);
}

SpatialIndex& SpatialIndexing::makeTree(dp::Table& table, const work::Cancellation& cancellation) {
    follow(table);
    if (!tree_) {
        tree_ = make(table, table.coordSystem(), cancellation);
    }
    return *tree_;
}

std::unique_ptr<SpatialIndex> SpatialIndexing::make(dp::Table& table,
                                                    const std::shared_ptr<cs::CoordSystem>& system,
                                                    const work::Cancellation& cancellation) {
    QElapsedTimer timer;
    timer.start();
    auto tree = std::make_unique<SpatialIndex>(table, system, cancellation);
    use_.makingMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    return tree;
}

bool SpatialIndexing::looksUpInTable(const dp::Table& table) {
    use_ = {};
    follow(table);
    const double making = cost::treeRow * static_cast<double>(table.featureCount().value_or(0));
    if (tree_ || spent_ + cost::sourceLookup > making || !table.usesWindow()) {
        return false;
    }
    spent_ += cost::sourceLookup;
    use_.isOfTable = true;
    return true;
}

bool SpatialIndexing::scansTable(const dp::Table& table) {
    const double making = cost::treeRow * rowsOf(table);
    use_.isScan = !tree_ && !table.usesWindow() && spent_ < making && making > smallTree;
    spent_ += use_.isScan ? making : 0;
    return use_.isScan;
}

bool SpatialIndexing::find(SpatialRelation relation, const geometry::GeometryPtr& b, bool isRepeated,
                           dp::Table& table, dp::ScanRequest& request,
                           const work::Cancellation& cancellation) {
    const geometry::Envelope envelope = b->envelope();
    if (envelope.isEmpty()) {
        request.ids.emplace(); // stands in no relation to anything
        return true;
    }
    if (looksUpInTable(table)) {
        request.window = envelope;
        return false;
    }
    if (!isRepeated && scansTable(table)) {
        return false;
    }
    makeTree(table, cancellation).search(relation, b, table, request.ids.emplace());
    return true;
}

SpatialIndexing::Elsewhere& SpatialIndexing::elsewhere(const std::shared_ptr<cs::CoordSystem>& system) {
    const auto found = std::find_if(elsewhere_.begin(), elsewhere_.end(), [&](const Elsewhere& each) {
        return each.system == system || each.system->equals(*system);
    });
    if (found != elsewhere_.end()) {
        return *found;
    }
    if (elsewhere_.size() == mostElsewhere) {
        elsewhere_.erase(elsewhere_.begin());
    }
    return elsewhere_.emplace_back(system);
}

bool SpatialIndexing::hasTreeIn(const cs::CoordSystem& system, const dp::Table& table) const {
    return revision_ == table.revision() &&
           std::any_of(elsewhere_.begin(), elsewhere_.end(), [&](const Elsewhere& each) {
               return each.tree && (each.system.get() == &system || each.system->equals(system));
           });
}

bool SpatialIndexing::findElsewhere(SpatialRelation relation, const geometry::GeometryPtr& b, bool isRepeated,
                                    dp::Table& table, dp::ScanRequest& request,
                                    const work::Cancellation& cancellation) {
    use_ = {};
    follow(table);
    Elsewhere& there = elsewhere(b->coordSystem());
    if (!there.tree) {
        if (const double testing = rowsOf(table) * cost::transformedRow;
            !isRepeated && there.spent < testing) {
            there.spent += testing;
            return false;
        }
        there.tree = make(table, there.system, cancellation);
    }
    there.tree->search(relation, b, table, request.ids.emplace());
    return true;
}

void SpatialIndexing::findInEnvelope(const geometry::Envelope& envelope, dp::Table& table,
                                     dp::ScanRequest& request, const work::Cancellation& cancellation) {
    if (looksUpInTable(table)) {
        request.window = envelope;
    } else {
        makeTree(table, cancellation).searchEnvelope(envelope, request.ids.emplace());
    }
}

void SpatialIndexing::findNear(const geometry::Geometry& centre, const geometry::Nearness& nearness,
                               dp::Table& table, dp::ScanRequest& request,
                               const work::Cancellation& cancellation) {
    const auto isPlane = [](const std::shared_ptr<cs::CoordSystem>& system) {
        return !system || !system->isGeographic();
    };
    // In the plane nothing has to be known of the others; on Earth their edges are no straight lines. The
    // other measures find what is empty as well.
    if (nearness.kind == geometry::DistanceKind::General && isPlane(centre.coordSystem()) &&
        isPlane(table.coordSystem()) && !hasTree(table)) {
        const auto windows = geometry::neighbourhood(centre, nearness, {table.coordSystem(), false, 0.0});
        if (windows && windows->size() == 1 && looksUpInTable(table)) {
            request.window = windows->front();
            return;
        }
    }
    std::vector<dp::FeatureId> found;
    if (tree(table, cancellation).searchNear(centre, nearness, table, found)) {
        request.ids = std::move(found);
    }
}

} // namespace orvane::adaptor
