#include "host/adaptor/scanning/RelationFilter.h"

#include "host/adaptor/indices/SpatialIndex.h"

#include "platform/geometry/forms/GeometryFactory.h"

#include <algorithm>

namespace orvane::adaptor {

bool RelationFilter::accepts(const dp::Cell& geometry) const {
    if (geometry.type() != dp::CellType::Wkb) {
        return false;
    }
    geometry::GeometryPtr own; // decoded once, and not at all where the bytes of a position will do
    return std::all_of(tests_.begin(), tests_.end(), [&](const Test& test) {
        if (test.isInPlace) {
            if (const auto box = geometry::envelopeOfWkb(geometry.view());
                box && !box->isEmpty() && !test.envelope.isEmpty() && !box->intersects(test.envelope)) {
                return false;
            }
            return holds(test.relation.ofColumn(), geometry.view(), coordSystem_, *test.value);
        }
        own = own ? own : decodeWkb(geometry.view(), coordSystem_);
        return own && (test.relation.isSecondOperand ? holds(test.relation.relation, *test.value, *own)
                                                     : holds(test.relation.relation, *own, *test.value));
    });
}

} // namespace orvane::adaptor
