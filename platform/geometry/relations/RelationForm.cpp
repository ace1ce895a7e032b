#include "platform/geometry/relations/RelationForm.h"

#include <algorithm>

namespace orvane::geometry {

namespace {

Envelope envelopeOf(const GEOSGeometry* geometry) {
    Envelope envelope;
    const GEOSContextHandle_t context = geosContext();
    if (GEOSGeom_getXMin_r(context, geometry, &envelope.minX) != 1 ||
        GEOSGeom_getYMin_r(context, geometry, &envelope.minY) != 1 ||
        GEOSGeom_getXMax_r(context, geometry, &envelope.maxX) != 1 ||
        GEOSGeom_getYMax_r(context, geometry, &envelope.maxY) != 1) {
        throwGeosError();
    }
    return envelope;
}

/// Whether the only ring of a polygon goes from corner to corner of its envelope.
bool isBox(const GEOSGeometry* polygon, const Envelope& envelope) {
    constexpr unsigned cornersAndEnd = 5;
    const GEOSContextHandle_t context = geosContext();
    const GEOSGeometry* ring =
        GEOSGeomTypeId_r(context, polygon) == GEOS_POLYGON && GEOSGetNumInteriorRings_r(context, polygon) == 0
            ? GEOSGetExteriorRing_r(context, polygon)
            : nullptr;
    const GEOSCoordSequence* positions = ring ? GEOSGeom_getCoordSeq_r(context, ring) : nullptr;
    unsigned size = 0;
    if (!positions || GEOSCoordSeq_getSize_r(context, positions, &size) == 0 || size != cornersAndEnd) {
        return false;
    }
    unsigned corners = 0; // a bit for each
    double lastX = 0, lastY = 0;
    for (unsigned i = 0; i < cornersAndEnd; ++i) {
        double x = 0, y = 0;
        GEOSCoordSeq_getXY_r(context, positions, i, &x, &y);
        const bool isOnCorner =
            (x == envelope.minX || x == envelope.maxX) && (y == envelope.minY || y == envelope.maxY);
        if (!isOnCorner || (i > 0 && (x == lastX) == (y == lastY))) {
            return false;
        }
        corners |= 1U << ((x == envelope.maxX ? 1 : 0) + (y == envelope.maxY ? 2 : 0));
        lastX = x;
        lastY = y;
    }
    return corners == 0b1111;
}

bool isOnePosition(const Envelope& envelope) {
    return envelope.minX == envelope.maxX && envelope.minY == envelope.maxY;
}

/// A line whose positions are all the same is a point to whoever meets it, but not to every algorithm.
bool hasLength(const GEOSGeometry* line) {
    return GEOSisEmpty_r(geosContext(), line) == 0 && !isOnePosition(envelopeOf(line));
}

bool isMultiOf(const GEOSGeometry* geometry, int kind, bool (*isSound)(const GEOSGeometry*)) {
    const GEOSContextHandle_t context = geosContext();
    if (GEOSGeomTypeId_r(context, geometry) != kind) {
        return false;
    }
    const int count = GEOSGetNumGeometries_r(context, geometry);
    for (int i = 0; i < count; ++i) {
        if (!isSound(GEOSGetGeometryN_r(context, geometry, i))) {
            return false;
        }
    }
    return true;
}

GeosPreparedPtr preparedFrom(const GEOSGeometry* geometry) {
    GeosPreparedPtr prepared(GEOSPrepare_r(geosContext(), geometry));
    if (!prepared) {
        throwGeosError();
    }
    return prepared;
}

} // namespace

const GEOSPreparedGeometry* RelationForm::Piece::prepared() {
    if (!preparedForm) {
        preparedForm = preparedFrom(geometry);
    }
    return preparedForm.get();
}

RelationForm& RelationForm::of(const Geometry& geometry) {
    auto& form = geometry.keptForm().get<RelationForm>();
    if (!form.isConverted_) {
        form.whole_ = toGeos(geometry);
        form.isConverted_ = true;
    }
    return form;
}

std::vector<RelationForm::Piece>& RelationForm::pieces() {
    if (hasPieces_) {
        return pieces_;
    }
    pieces_.clear();
    made_.clear();
    envelope_ = Envelope();
    if (whole_ && GEOSisEmpty_r(geosContext(), whole_.get()) == 0) {
        const auto hasPosition = [](const GEOSGeometry* point) {
            return GEOSisEmpty_r(geosContext(), point) == 0;
        };
        if (isMultiOf(whole_.get(), GEOS_MULTIPOINT, hasPosition)) {
            addPiece(whole_.get(), 0);
        } else if (isMultiOf(whole_.get(), GEOS_MULTILINESTRING, hasLength)) {
            addPiece(whole_.get(), 1);
        } else {
            addParts(whole_.get());
            addGathered(points_, GEOS_MULTIPOINT, 0);
            addGathered(lines_, GEOS_MULTILINESTRING, 1);
            points_ = {};
            lines_ = {};
        }
    }
    hasPieces_ = true;
    return pieces_;
}

void RelationForm::addParts(const GEOSGeometry* geometry) {
    const GEOSContextHandle_t context = geosContext();
    if (GEOSisEmpty_r(context, geometry) == 1) {
        return;
    }
    switch (GEOSGeomTypeId_r(context, geometry)) {
    case GEOS_POINT: points_.push_back(geometry); break;
    case GEOS_LINESTRING:
    case GEOS_LINEARRING:
        hasLength(geometry) ? lines_.push_back(geometry) : addPoint(envelopeOf(geometry));
        break;
    case GEOS_POLYGON: addArea(geometry); break;
    default: {
        const int count = GEOSGetNumGeometries_r(context, geometry);
        for (int i = 0; i < count; ++i) {
            addParts(GEOSGetGeometryN_r(context, geometry, i));
        }
    }
    }
}

/// Whether a position is inside is a matter of the number of borders between it and the outside for a
/// prepared area, of being in the shell and in no hole for a plain one: the same, but for holes that cross.
void RelationForm::addArea(const GEOSGeometry* polygon) {
    const GEOSContextHandle_t context = geosContext();
    const Envelope place = envelopeOf(polygon);
    if (isOnePosition(place)) {
        addPoint(place);
    } else if (GEOSGetNumInteriorRings_r(context, polygon) > 0 && GEOSisValid_r(context, polygon) != 1) {
        made_.push_back(checked(GEOSMakeValid_r(context, polygon)));
        addParts(made_.back().get());
    } else {
        addPiece(polygon, 2);
    }
}

void RelationForm::addPoint(const Envelope& place) {
    made_.push_back(checked(GEOSGeom_createPointFromXY_r(geosContext(), place.minX, place.minY)));
    points_.push_back(made_.back().get());
}

void RelationForm::addPiece(const GEOSGeometry* geometry, int dimension) {
    const Envelope envelope = envelopeOf(geometry);
    pieces_.push_back({geometry, dimension, envelope, nullptr, dimension == 2 && isBox(geometry, envelope)});
    envelope_.add(pieces_.back().envelope);
}

void RelationForm::addGathered(const std::vector<const GEOSGeometry*>& parts, int kind, int dimension) {
    if (parts.size() == 1) {
        addPiece(parts.front(), dimension);
    } else if (!parts.empty()) {
        std::vector<GeosPtr> copies(parts.size());
        std::transform(parts.begin(), parts.end(), copies.begin(), [](const GEOSGeometry* part) {
            return checked(GEOSGeom_clone_r(geosContext(), part));
        });
        made_.push_back(collectionOf(kind, std::move(copies)));
        addPiece(made_.back().get(), dimension);
    }
}

const Envelope& RelationForm::envelope() {
    pieces();
    return envelope_;
}

const GEOSGeometry* RelationForm::joined(int dimension) {
    GeosPtr& joined = joined_[dimension];
    if (!joined) {
        std::vector<GeosPtr> copies;
        for (const Piece& piece : pieces()) {
            if (piece.dimension == dimension) {
                copies.push_back(checked(GEOSGeom_clone_r(geosContext(), piece.geometry)));
            }
        }
        if (!copies.empty()) {
            const GeosPtr all = collectionOf(GEOS_GEOMETRYCOLLECTION, std::move(copies));
            joined = checked(GEOSUnaryUnion_r(geosContext(), all.get()));
        }
    }
    return joined.get();
}

const GEOSGeometry* RelationForm::related() {
    if (pieces().size() == 1) {
        return pieces_.front().geometry;
    }
    if (!isOfOneKind_) {
        const int kind = GEOSGeomTypeId_r(geosContext(), whole_.get());
        isOfOneKind_ = !pieces_.empty() && made_.empty() && kind != GEOS_GEOMETRYCOLLECTION &&
                       (kind != GEOS_MULTIPOLYGON || GEOSisValid_r(geosContext(), whole_.get()) == 1);
    }
    return *isOfOneKind_ ? whole_.get() : nullptr;
}

const GEOSPreparedGeometry* RelationForm::relatedPrepared() {
    if (pieces().size() == 1) {
        return pieces_.front().prepared();
    }
    if (!prepared_) {
        prepared_ = preparedFrom(related());
    }
    return prepared_.get();
}

bool RelationForm::isAreaAgain() {
    if (!isValidArea_) {
        const int kind = GEOSGeomTypeId_r(geosContext(), whole_.get());
        isValidArea_ = (kind == GEOS_POLYGON || kind == GEOS_MULTIPOLYGON) && !pieces().empty() &&
                       GEOSisValid_r(geosContext(), whole_.get()) == 1;
        return false;
    }
    return *isValidArea_ && related();
}

} // namespace orvane::geometry
