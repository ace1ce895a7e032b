#pragma once

#include "platform/geometry/forms/GeosForm.h"

#include <mutex>
#include <optional>
#include <vector>

namespace orvane::geometry {

/// What GEOS made of a shape to relate it, kept with the shape. GEOS objects compute things lazily, also when
/// they are only read, so that whoever uses a form holds the lock of its KeptForm.
class RelationForm {
public:
    /// Something of which GEOS answers the same whichever way it is asked: points, lines that have a length,
    /// or one area. What is said of a geometry is put together from what is said of its pieces.
    struct Piece {
        const GEOSGeometry* geometry;
        int dimension;
        Envelope envelope;
        GeosPreparedPtr preparedForm;
        bool isBox; ///< the area of the whole envelope

        /// Made when first asked for. Throws std::runtime_error.
        const GEOSPreparedGeometry* prepared();
    };

    RelationForm() = default;
    explicit RelationForm(GeosPtr whole) : whole_(std::move(whole)), isConverted_(true) {}

    /// The form of a geometry whose lock is held. Throws std::runtime_error.
    static RelationForm& of(const Geometry& geometry);

    /// Null when a coordinate is not finite.
    const GEOSGeometry* whole() const { return whole_.get(); }
    /// None where whole() is null, and of an empty geometry. Throws std::runtime_error.
    std::vector<Piece>& pieces();
    const Envelope& envelope();
    /// The pieces of one dimension in one, none of which crosses another; null for none.
    const GEOSGeometry* joined(int dimension);
    /// What GEOS relates as it is: the only piece, or all of them where they are parts of one kind; null for
    /// others, which are related by pieces.
    const GEOSGeometry* related();
    /// Of what is related. Throws std::runtime_error.
    const GEOSPreparedGeometry* relatedPrepared();
    /// Whether the whole is one valid area or several, for which it pays to prepare it: true from the second
    /// time on that it is asked.
    bool isAreaAgain();

private:
    void addParts(const GEOSGeometry* geometry);
    void addArea(const GEOSGeometry* polygon);
    void addPoint(const Envelope& place);
    void addPiece(const GEOSGeometry* geometry, int dimension);
    void addGathered(const std::vector<const GEOSGeometry*>& parts, int kind, int dimension);

    GeosPtr whole_;
    std::vector<GeosPtr> made_; ///< what pieces look at that is no part of the whole
    std::vector<const GEOSGeometry*> points_, lines_;
    std::vector<Piece> pieces_;
    Envelope envelope_;        ///< of the pieces
    GeosPreparedPtr prepared_; // destroyed before the geometry that it looks at
    GeosPtr joined_[3];
    bool isConverted_ = false;
    bool hasPieces_ = false;
    std::optional<bool> isOfOneKind_; ///< with areas that do not overlap
    std::optional<bool> isValidArea_; ///< none before isAreaAgain
};

/// Holds the locks of the forms of two geometries.
class FormLock {
public:
    FormLock(const Geometry& a, const Geometry& b)
        : first_(a.keptForm().mutex(), std::defer_lock), second_(b.keptForm().mutex(), std::defer_lock) {
        if (first_.mutex() == second_.mutex()) {
            first_.lock();
        } else {
            std::lock(first_, second_);
        }
    }

private:
    std::unique_lock<std::mutex> first_;
    std::unique_lock<std::mutex> second_;
};

/// What a predicate of GEOS answered. Throws std::runtime_error where it failed.
inline bool isTrue(char answer) {
    constexpr char failed = 2;
    if (answer == failed) {
        throwGeosError();
    }
    return answer == 1;
}

} // namespace orvane::geometry
