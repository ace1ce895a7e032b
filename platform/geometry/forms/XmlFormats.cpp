#include "platform/geometry/forms/XmlFormats.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/shapes/Curves.h"

namespace orvane::geometry {

namespace {

GeometryPtr borrowed(const Geometry& geometry) {
    return GeometryPtr(std::shared_ptr<void>(), &geometry);
}

/// Elements, closed when they go out of scope.
class Element {
public:
    Element(std::string& out, const std::string& name, const std::string& attributes = {})
        : out_(out), name_(name) {
        out_ += '<' + name_ + attributes + '>';
    }
    ~Element() { out_ += "</" + name_ + '>'; }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

private:
    std::string& out_;
    std::string name_;
};

void appendOrdinates(const double* position, bool z, char separator, int digits, std::string& out) {
    for (std::size_t i = 0; i < (z ? 3U : 2U); ++i) {
        if (i > 0) {
            out += separator;
        }
        appendNumber(position[i], digits, out);
    }
}

void appendPositions(const CoordinateSequence& positions, char between, char separator, int digits,
                     std::string& out) {
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (i > 0) {
            out += between;
        }
        appendOrdinates(positions.position(i), hasZ(positions.dimensions()), separator, digits, out);
    }
}

CoordinateSequence sequenceOf(const Point& point) {
    return point.isEmpty()
               ? CoordinateSequence(point.dimensions())
               : CoordinateSequence(point.dimensions(), {point.ordinates(), strideOf(point.dimensions())});
}

/// GML 2 and KML differ from GML 3 in the names of elements and in how positions are written.
class Writer {
public:
    enum class Form { Gml2, Gml3, Kml };
    Writer(Form form, int digits, std::string& out) : form_(form), digits_(digits), out_(out) {}

    void write(const Geometry& geometry, const std::string& attributes = {}) {
        switch (geometry.type()) {
        case GeometryType::Point: {
            const Element element(out_, named("Point"), attributes);
            writePositions(sequenceOf(static_cast<const Point&>(geometry)), "pos");
            break;
        }
        case GeometryType::LineString: {
            const Element element(out_, named("LineString"), attributes);
            writePositions(static_cast<const LineString&>(geometry).coordinates(), "posList");
            break;
        }
        case GeometryType::CircularString:
        case GeometryType::CompoundCurve: {
            const Element element(out_, named("Curve"), attributes);
            const Element segments(out_, named("segments"));
            writeSegments(geometry);
            break;
        }
        case GeometryType::Polygon: writePolygon(static_cast<const Polygon&>(geometry), attributes); break;
        case GeometryType::CurvePolygon: {
            const Element element(out_, named("Polygon"), attributes);
            writeRings(static_cast<const CurvePolygon&>(geometry).rings());
            break;
        }
        default: writeCollection(static_cast<const GeometryCollection&>(geometry), attributes);
        }
    }

private:
    std::string named(const char* name) const {
        return form_ == Form::Kml ? name : std::string("gml:") + name;
    }

    void writePositions(const CoordinateSequence& positions, const char* name) {
        if (form_ != Form::Gml3) {
            const Element element(out_, named("coordinates"));
            appendPositions(positions, ' ', ',', digits_, out_);
            return;
        }
        const Element element(out_, named(name),
                              hasZ(positions.dimensions()) ? " srsDimension=\"3\"" : " srsDimension=\"2\"");
        appendPositions(positions, ' ', ' ', digits_, out_);
    }

    void writeSegments(const Geometry& curve) {
        if (curve.type() == GeometryType::CompoundCurve) {
            for (const GeometryPtr& part : static_cast<const CompoundCurve&>(curve).parts()) {
                writeSegments(*part);
            }
        } else if (curve.type() == GeometryType::CircularString) {
            const Element segment(out_, named("ArcString"));
            writePositions(static_cast<const CircularString&>(curve).coordinates(), "posList");
        } else {
            const Element segment(out_, named("LineStringSegment"));
            writePositions(static_cast<const LineString&>(curve).coordinates(), "posList");
        }
    }

    const char* border(bool isShell) const {
        if (form_ == Form::Gml3) {
            return isShell ? "exterior" : "interior";
        }
        return isShell ? "outerBoundaryIs" : "innerBoundaryIs";
    }

    void writePolygon(const Polygon& polygon, const std::string& attributes) {
        const Element element(out_, named("Polygon"), attributes);
        for (std::size_t i = 0; i < polygon.rings().size(); ++i) {
            const Element side(out_, named(border(i == 0)));
            const Element ring(out_, named("LinearRing"));
            writePositions(polygon.rings()[i], "posList");
        }
    }

    void writeRings(const std::vector<GeometryPtr>& rings) {
        for (std::size_t i = 0; i < rings.size(); ++i) {
            const Element side(out_, named(border(i == 0)));
            if (rings[i]->type() == GeometryType::LineString) {
                const Element ring(out_, named("LinearRing"));
                writePositions(static_cast<const LineString&>(*rings[i]).coordinates(), "posList");
            } else {
                const Element ring(out_, named("Ring"));
                const Element member(out_, named("curveMember"));
                write(*rings[i]);
            }
        }
    }

    struct Names {
        const char* whole;
        const char* member;
    };
    Names names(GeometryType type) const {
        const bool isNew = form_ == Form::Gml3;
        switch (type) {
        case GeometryType::MultiPoint: return {"MultiPoint", "pointMember"};
        case GeometryType::MultiLineString:
        case GeometryType::MultiCurve:
            return isNew ? Names{"MultiCurve", "curveMember"} : Names{"MultiLineString", "lineStringMember"};
        case GeometryType::MultiPolygon:
        case GeometryType::MultiSurface:
            return isNew ? Names{"MultiSurface", "surfaceMember"} : Names{"MultiPolygon", "polygonMember"};
        default: return {"MultiGeometry", "geometryMember"};
        }
    }

    void writeCollection(const GeometryCollection& collection, const std::string& attributes) {
        const bool isKml = form_ == Form::Kml;
        const Names called = isKml ? Names{"MultiGeometry", nullptr} : names(collection.type());
        const Element element(out_, named(called.whole), attributes);
        for (const GeometryPtr& part : collection.parts()) {
            if (isKml) {
                write(*part);
                continue;
            }
            const Element member(out_, named(called.member));
            write(*part);
        }
    }

    Form form_;
    int digits_;
    std::string& out_;
};

} // namespace

void appendGml(const Geometry& geometry, int version, int digits, std::string& out) {
    const bool isNew = version >= 3;
    const GeometryPtr written = isNew ? inStandardKinds(borrowed(geometry)) : linearized(borrowed(geometry));
    const auto coordSystem = geometry.coordSystem();
    const int code = coordSystem ? coordSystem->epsg() : 0;
    Writer(isNew ? Writer::Form::Gml3 : Writer::Form::Gml2, digits, out)
        .write(*written, code != 0 ? " srsName=\"EPSG:" + std::to_string(code) + '"' : std::string());
}

void appendKml(const Geometry& geometry, int digits, std::string& out) {
    Writer(Writer::Form::Kml, digits, out).write(*linearized(borrowed(geometry)));
}

} // namespace orvane::geometry
