#include "host/desk/session/LayerReading.h"

#include <platform/geometry/forms/GeometryFactory.h>

#include <QElapsedTimer>

namespace orvane::desk {

LayerReading::LayerReading(dp::Table& table)
    : features_(std::make_shared<RowStore>(QStringList{QStringLiteral("id"), QStringLiteral("obj")})),
      geometryIndex_(table.schema()->geometryIndex()) {
    dp::ScanRequest request;
    request.attributes = {geometryIndex_};
    cursor_ = table.openCursor(request);
    features_->setCoordSystem(table.coordSystem());
}

bool LayerReading::readOn() {
    constexpr int portionMs = 20;
    constexpr int rowsBetweenLooks = 64; // at the clock
    QElapsedTimer timer;
    timer.start();
    for (int row = 1; row % rowsBetweenLooks != 0 || !timer.hasExpired(portionMs); ++row) {
        if (!cursor_->next()) {
            features_->publish();
            return false;
        }
        const dp::Cell cell = cursor_->cell(geometryIndex_);
        if (cell.type() != dp::CellType::Wkb) {
            continue;
        }
        auto envelope = geometry::envelopeOfWkb(cell.view());
        if (!envelope) { // curves, and what is broken
            try {
                envelope = geometry::GeometryFactory::fromWkb(cell.view(), nullptr)->envelope();
            } catch (const std::runtime_error&) {
                continue;
            }
        }
        features_->append(std::int64_t{cursor_->featureId().value().toLongLong()});
        features_->appendGeometry(cell.view(), *envelope);
        features_->endRow();
    }
    features_->publish();
    return true;
}

} // namespace orvane::desk
