#include "host/maps/shapes/ShapeReader.h"

#include "platform/geometry/shapes/Arc.h"

#include <cmath>

namespace orvane::maps {

using geometry::Dimensions;
using geometry::GeometryType;
using geometry::PositionRun;

/// Puts positions into parts. A ring of a curve polygon comes as a line, a circular string or a compound
/// curve, whose own parts follow on each other.
class ShapeReader::Visitor {
public:
    Visitor(std::vector<double>& positions, double tolerance, FlatShape& out)
        : positions_(positions), tolerance_(tolerance), out_(out) {}

    bool begin(GeometryType type, Dimensions, std::size_t) {
        type_ = type;
        if (type == GeometryType::CurvePolygon) {
            ++curvePolygons_;
        } else if (type == GeometryType::CompoundCurve && compounds_++ == 0) {
            beginRun();
        }
        return true;
    }

    bool positions(const PositionRun& run) {
        switch (type_) {
        case GeometryType::Point: return addPoint(run);
        case GeometryType::Polygon: addLine(run, PartKind::Ring, run.isHole); return true;
        case GeometryType::CircularString:
        case GeometryType::LineString: break;
        default: return false;
        }
        if (compounds_ > 0) {
            append(run);
        } else {
            addLine(run, lineKind(), false);
        }
        return true;
    }

    bool end(GeometryType type, Dimensions) {
        if (type == GeometryType::CurvePolygon) {
            --curvePolygons_;
        } else if (type == GeometryType::CompoundCurve && --compounds_ == 0) {
            endRun(lineKind(), false);
        }
        return true;
    }

private:
    PartKind lineKind() const { return curvePolygons_ > 0 ? PartKind::Ring : PartKind::Line; }

    bool addPoint(const PositionRun& run) {
        const double x = run.value(0);
        const double y = run.value(1);
        if (std::isfinite(x) && std::isfinite(y)) { // not a number where it is empty
            const std::uint32_t begin = out_.size();
            out_.add(x, y);
            out_.endPart(PartKind::Point, begin);
        }
        return true;
    }

    void addLine(const PositionRun& run, PartKind kind, bool isHole) {
        beginRun();
        append(run);
        endRun(kind, isHole);
    }

    void beginRun() {
        begin_ = out_.size();
        bounds_ = {};
        hasDropped_ = false;
    }

    void append(const PositionRun& run) {
        if (type_ == GeometryType::CircularString) {
            appendCircularString(run);
            return;
        }
        const std::size_t stride = strideOf(run.dimensions);
        if (run.littleEndian) { // the same, with a read that needs no decision
            for (std::size_t i = 0; i < run.doubles(); i += stride) {
                addPosition(qFromLittleEndian<double>(run.data + i * sizeof(double)),
                            qFromLittleEndian<double>(run.data + (i + 1) * sizeof(double)));
            }
            return;
        }
        for (std::size_t i = 0; i < run.doubles(); i += stride) {
            addPosition(run.value(i), run.value(i + 1));
        }
    }

    void appendCircularString(const PositionRun& run) {
        const geometry::CoordinateSequence arcs(run.dimensions, run.count,
                                                [&run](double* target) { run.copyTo(target); });
        if (arcs.isEmpty()) {
            return;
        }
        positions_.clear();
        // A tolerance of 0 means a ten-thousandth of the radius there, which is fine for any picture.
        geometry::appendArcs(arcs, tolerance_ > 0 ? QSizeF(tolerance_, tolerance_) : QSizeF(), positions_);
        addPosition(arcs.x(0), arcs.y(0));
        const std::size_t stride = arcs.stride();
        for (std::size_t i = 0; i + 1 < positions_.size(); i += stride) {
            addPosition(positions_[i], positions_[i + 1]);
        }
    }

    void addPosition(double x, double y) {
        if (!(std::isfinite(x) && std::isfinite(y))) {
            return;
        }
        bounds_.add(x, y);
        lastX_ = x;
        lastY_ = y;
        if (out_.size() > begin_) {
            const double* kept = out_.position(out_.size() - 1);
            if (std::abs(x - kept[0]) <= tolerance_ && std::abs(y - kept[1]) <= tolerance_) {
                hasDropped_ = true;
                return;
            }
        }
        hasDropped_ = false;
        out_.add(x, y);
    }

    void endRun(PartKind kind, bool isHole) {
        if (kind == PartKind::Line && hasDropped_) {
            out_.add(lastX_, lastY_);
        } else if (kind == PartKind::Ring) {
            dropClosingPosition();
        }
        const std::uint32_t count = out_.size() - begin_;
        if (count >= (kind == PartKind::Ring ? 3U : 2U) && !isWithinTolerance()) {
            out_.endPart(kind, begin_);
            return;
        }
        out_.truncate(begin_);
        if (!bounds_.isEmpty() && !isHole) {
            out_.add((bounds_.minX + bounds_.maxX) / 2, (bounds_.minY + bounds_.maxY) / 2);
            out_.endPart(PartKind::Speck, begin_);
        }
    }

    bool isWithinTolerance() const {
        return bounds_.maxX - bounds_.minX <= tolerance_ && bounds_.maxY - bounds_.minY <= tolerance_;
    }

    void dropClosingPosition() {
        while (out_.size() > begin_ + 1) {
            const double* first = out_.position(begin_);
            const double* last = out_.position(out_.size() - 1);
            if (std::abs(first[0] - last[0]) > tolerance_ || std::abs(first[1] - last[1]) > tolerance_) {
                return;
            }
            out_.truncate(out_.size() - 1);
        }
    }

    std::vector<double>& positions_;
    double tolerance_;
    FlatShape& out_;
    GeometryType type_ = GeometryType::GeometryCollection;
    int curvePolygons_ = 0;
    int compounds_ = 0;
    std::uint32_t begin_ = 0;
    geometry::Envelope bounds_;
    double lastX_ = 0;
    double lastY_ = 0;
    bool hasDropped_ = false; ///< the last position
};

bool ShapeReader::read(const ShapeView& view, double tolerance, FlatShape& out) {
    const std::size_t parts = out.parts.size();
    const std::uint32_t positions = out.size();
    Visitor visitor(positions_, tolerance, out);
    bool isRead = false;
    if (view.framing == geometry::Framing::Spatialite) {
        geometry::GeometryWalker<geometry::Framing::Spatialite, Visitor> walker(view.bytes, visitor,
                                                                                view.littleEndian);
        isRead = walker.walkContent(view.kind);
    } else {
        geometry::GeometryWalker<geometry::Framing::Wkb, Visitor> walker(view.bytes, visitor);
        isRead = view.framing == geometry::Framing::Wkb && walker.walk();
    }
    if (!isRead) {
        out.parts.resize(parts);
        out.truncate(positions);
    }
    return isRead;
}

} // namespace orvane::maps
