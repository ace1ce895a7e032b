#pragma once

#include "host/adaptor/planning/ScanPlan.h"

#include "platform/dp/Cursor.h"
#include "platform/geometry/shapes/Geometry.h"

#include <memory>
#include <vector>

namespace orvane::adaptor {

/// The relations to given geometries that the rows of a scan are left to be tested for.
class RelationFilter {
public:
    explicit RelationFilter(std::shared_ptr<cs::CoordSystem> coordSystem)
        : coordSystem_(std::move(coordSystem)) {}

    void clear() { tests_.clear(); }
    bool isEmpty() const { return tests_.empty(); }
    /// `isInPlace`: the geometry is in the coordinate system of the table, which counts.
    void add(const ScanPlan::Relation& relation, geometry::GeometryPtr value, bool isInPlace) {
        const geometry::Envelope envelope = value->envelope();
        tests_.push_back({relation, std::move(value), isInPlace, envelope});
    }
    /// Whether a row of that geometry stands in all of them. Throws std::bad_alloc.
    bool accepts(const dp::Cell& geometry) const;

private:
    struct Test {
        ScanPlan::Relation relation;
        geometry::GeometryPtr value;
        bool isInPlace;
        geometry::Envelope envelope; ///< of the value
    };

    std::shared_ptr<cs::CoordSystem> coordSystem_; ///< of the table
    std::vector<Test> tests_;
};

} // namespace orvane::adaptor
