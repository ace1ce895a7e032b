#include "host/adaptor/indices/SpatialIndexing.h"

#include "platform/cs/CoordSystem.h"

#include <QElapsedTimer>

#include <utility>

namespace orvane::adaptor {

SpatialIndex& SpatialIndexing::tree(dp::Table& table, const work::Cancellation& cancellation) {
    use_ = {};
    return makeTree(table, cancellation);
}

SpatialIndex& SpatialIndexing::makeTree(dp::Table& table, const work::Cancellation& cancellation) {
    if (!hasTree(table)) {
        const std::uint64_t revision = table.revision();
        QElapsedTimer timer;
        timer.start();
        tree_ = std::make_unique<SpatialIndex>(table, cancellation);
        revision_ = revision;
        use_.makingMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }
    return *tree_;
}

bool SpatialIndexing::looksUpInTable(const dp::Table& table) {
    use_ = {};
    if (const std::uint64_t revision = table.revision(); revision_ != revision) {
        tree_.reset();
        spent_ = 0;
        revision_ = revision;
    }
    const double making = cost::treeRow * static_cast<double>(table.featureCount().value_or(0));
    if (tree_ || spent_ + cost::sourceLookup > making || !table.usesWindow()) {
        return false;
    }
    spent_ += cost::sourceLookup;
    use_.isOfTable = true;
    return true;
}

bool SpatialIndexing::find(SpatialRelation relation, const geometry::GeometryPtr& b, dp::Table& table,
                           dp::ScanRequest& request, const work::Cancellation& cancellation) {
    const geometry::Envelope envelope = b->envelope();
    if (envelope.isEmpty()) {
        request.ids.emplace(); // stands in no relation to anything
        return true;
    }
    if (looksUpInTable(table)) {
        request.window = envelope;
        return false;
    }
    makeTree(table, cancellation).search(relation, b, table, request.ids.emplace());
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
