#include "platform/geometry/forms/TextReader.h"

#include "platform/cs/CoordSystem.h"
#include "platform/cs/SystemDescription.h"
#include "platform/geometry/editing/Editing.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::geometry {

namespace {

constexpr Dimensions space = Dimensions::XYZ;

/// Reads geometry elements of GML 2, GML 3 and KML by their local names; what is unknown around them is
/// passed through, and what is unknown beside them is left out. All positions get a z, which goes again where
/// none had one.
class Reader {
public:
    Reader(std::string_view text, bool isKml)
        : xml_(QByteArray(text.data(), static_cast<int>(text.size()))), isKml_(isKml) {
        xml_.setNamespaceProcessing(false); // a part of a document may come without its declarations
    }

    std::shared_ptr<Geometry> read() {
        GeometryPtr found = readNext() ? takeElement(0) : nullptr;
        if (found && isWrapper_) {
            found = static_cast<const GeometryCollection&>(*found).parts().front();
        }
        if (!found) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "нужен вид геометрии"));
        }
        GeometryPtr result = hasHeights_ ? found : withDimensions(found, Dimensions::XY);
        if (isFlipped_) {
            result = withPositions(result,
                                   [](double* position, Dimensions) { std::swap(position[0], position[1]); });
        }
        const std::shared_ptr<Geometry> placed = result->clone();
        placed->setCoordSystem(isKml_ ? cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326)
                                      : system_);
        return placed;
    }

private:
    using Parts = std::vector<GeometryPtr>;

    [[noreturn]] void fail(const char* what) const {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "строка %0, знак %1: %2."),
                      QString::number(xml_.lineNumber()), QString::number(xml_.columnNumber() + 1),
                      xml_.hasError() ? xml_.errorString()
                                      : QCoreApplication::translate("orvane::geometry", what));
    }

    /// Whether there is another element within the current one; else its end is behind.
    bool readNext() {
        const bool isThere = xml_.readNextStartElement();
        if (xml_.hasError()) {
            fail("");
        }
        return isThere;
    }

    bool isNamed(const char* name) const {
        const QStringRef full = xml_.name();
        return full.mid(full.indexOf(QLatin1Char(':')) + 1) == QLatin1String(name);
    }

    void noteSystem() {
        const QString name = xml_.attributes().value(QLatin1String("srsName")).toString();
        const int dimension = xml_.attributes().value(QLatin1String("srsDimension")).toInt();
        dimension_ = dimension == 2 || dimension == 3 ? dimension : dimension_;
        if (name.isEmpty() || isSystemGiven_ || isKml_) {
            return;
        }
        QString code;
        for (auto at = name.crbegin(); at != name.crend() && at->isDigit(); ++at) {
            code.prepend(*at);
        }
        const bool isCrs84 = name.contains(QLatin1String("CRS84"));
        try {
            system_ =
                cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(isCrs84 ? 4326 : code.toInt());
        } catch (const std::runtime_error&) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "неизвестная координатная система"));
        }
        isSystemGiven_ = true;
        // The long names stand for the order of axes that the authority has given.
        const bool isLong =
            name.startsWith(QLatin1String("urn:")) || name.contains(QLatin1String("/def/crs/"));
        isFlipped_ = isLong && !isCrs84 && cs::describe(*system_).hasFlippedAxes;
    }

    void addPosition(const std::vector<double>& ordinates) {
        if (ordinates.size() < 2) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "у положения не меньше двух чисел"));
        }
        hasHeights_ = hasHeights_ || ordinates.size() > 2;
        values_.insert(values_.end(),
                       {ordinates[0], ordinates[1], ordinates.size() > 2 ? ordinates[2] : 0.0});
    }

    double numberOf(const QString& text) const {
        bool ok = false;
        const double number = text.trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(number)) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "координата не число"));
        }
        return number;
    }

    std::vector<double> numbersOf(const QString& text) const {
        std::vector<double> numbers;
        for (const QString& word : text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            numbers.push_back(numberOf(word));
        }
        return numbers;
    }

    /// "1,2,3 4,5,6"; GML may name other marks than these.
    void addCoordinates() {
        const auto attribute = [this](const char* name, QChar usual) {
            const auto value = xml_.attributes().value(QLatin1String(name));
            return value.isEmpty() ? usual : value.at(0);
        };
        const QChar point = attribute("decimal", QLatin1Char('.'));
        const QChar comma = attribute("cs", QLatin1Char(','));
        const QChar blank = attribute("ts", QLatin1Char(' '));
        QString text = xml_.readElementText(QXmlStreamReader::IncludeChildElements).simplified();
        if (blank != QLatin1Char(' ')) {
            text.remove(QLatin1Char(' ')).replace(blank, QLatin1Char(' '));
        }
        for (const QString& tuple : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            std::vector<double> ordinates;
            for (QString word : tuple.split(comma)) {
                ordinates.push_back(
                    numberOf(point == QLatin1Char('.') ? word : word.replace(point, QLatin1Char('.'))));
            }
            addPosition(ordinates);
        }
    }

    void addPositionList() {
        const int own = xml_.attributes().value(QLatin1String("srsDimension")).toInt();
        const std::size_t dimension =
            own == 2 || own == 3 ? static_cast<std::size_t>(own) : static_cast<std::size_t>(dimension_);
        const std::vector<double> numbers = numbersOf(xml_.readElementText());
        if (numbers.size() % dimension != 0) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "у положения не столько чисел, сколько у других"));
        }
        for (auto at = numbers.begin(); at != numbers.end(); at += static_cast<std::ptrdiff_t>(dimension)) {
            addPosition({at, at + static_cast<std::ptrdiff_t>(dimension)});
        }
    }

    /// All positions within the current element.
    void collectPositions() {
        while (readNext()) {
            if (isNamed("pos")) {
                addPosition(numbersOf(xml_.readElementText()));
            } else if (isNamed("posList")) {
                addPositionList();
            } else if (isNamed("coordinates")) {
                addCoordinates();
            } else if (isNamed("coord")) {
                std::vector<double> ordinates;
                while (readNext()) {
                    ordinates.push_back(numberOf(xml_.readElementText()));
                }
                addPosition(ordinates);
            } else {
                collectPositions();
            }
        }
    }

    CoordinateSequence takePositions() {
        values_.clear();
        collectPositions();
        return {space, values_};
    }

    CoordinateSequence takeRing() {
        CoordinateSequence ring = takePositions();
        if (!ring.isEmpty() && !ring.isClosed()) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "кольцо не замкнуто"));
        }
        return ring;
    }

    static GeometryPtr curveOf(Parts segments) {
        return segments.size() == 1 ? segments.front()
                                    : std::make_shared<CompoundCurve>(space, std::move(segments));
    }

    /// Of a curve polygon where a border is one.
    static GeometryPtr polygonOf(Parts rings) {
        const bool isPlain = std::all_of(rings.begin(), rings.end(), [](const GeometryPtr& ring) {
            return ring->type() == GeometryType::LineString;
        });
        if (!isPlain) {
            return std::make_shared<CurvePolygon>(space, std::move(rings));
        }
        std::vector<CoordinateSequence> sequences;
        for (const GeometryPtr& ring : rings) {
            sequences.push_back(static_cast<const LineString&>(*ring).coordinates());
        }
        return std::make_shared<Polygon>(space, std::move(sequences));
    }

    /// The geometries of all elements within the current one.
    Parts takeParts(int depth) {
        Parts parts;
        while (readNext()) {
            if (GeometryPtr part = takeElement(depth + 1)) {
                const bool isWrapped = isWrapper_;
                isWrapper_ = false;
                if (!isWrapped) {
                    parts.push_back(std::move(part));
                    continue;
                }
                const auto& wrapped = static_cast<const GeometryCollection&>(*part).parts();
                parts.insert(parts.end(), wrapped.begin(), wrapped.end());
            }
        }
        return parts;
    }

    static bool isAny(const Parts& parts, std::initializer_list<GeometryType> types) {
        return std::any_of(parts.begin(), parts.end(), [&](const GeometryPtr& part) {
            return std::find(types.begin(), types.end(), part->type()) != types.end();
        });
    }

    GeometryPtr collectionOf(Parts parts, GeometryType type) {
        if (isKml_ && !parts.empty()) { // which has one name for all of them
            const GeometryType first = parts.front()->type();
            const bool isOne = first < GeometryType::MultiPoint &&
                               std::all_of(parts.begin(), parts.end(), [first](const GeometryPtr& part) {
                                   return part->type() == first;
                               });
            type = isOne ? static_cast<GeometryType>(static_cast<int>(first) + 3) : type;
        }
        if (type == GeometryType::MultiLineString &&
            isAny(parts, {GeometryType::CircularString, GeometryType::CompoundCurve})) {
            type = GeometryType::MultiCurve;
        } else if (type == GeometryType::MultiPolygon && isAny(parts, {GeometryType::CurvePolygon})) {
            type = GeometryType::MultiSurface;
        }
        return std::make_shared<GeometryCollection>(type, space, std::move(parts));
    }

    /// Null for an element that holds no geometry.
    GeometryPtr takeElement(int depth) {
        constexpr int deepest = 64;
        if (depth > deepest) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "геометрии вложены слишком глубоко"));
        }
        noteSystem();
        try {
            return takeKnown(depth);
        } catch (const std::invalid_argument&) {
            fail(QT_TRANSLATE_NOOP("orvane::geometry", "часть другого вида, чем должна быть"));
        }
    }

    GeometryPtr takeKnown(int depth) {
        if (isNamed("Point")) {
            const CoordinateSequence one = takePositions();
            return one.isEmpty() ? std::make_shared<Point>(space)
                                 : std::make_shared<Point>(space, one.data());
        }
        if (isNamed("LineString") || isNamed("LineStringSegment")) {
            return std::make_shared<LineString>(takePositions());
        }
        if (isNamed("LinearRing")) {
            return std::make_shared<LineString>(takeRing());
        }
        if (isNamed("ArcString") || isNamed("Arc")) {
            return std::make_shared<CircularString>(takePositions());
        }
        if (isNamed("Curve") || isNamed("Ring") || isNamed("CompositeCurve")) {
            return curveOf(takeParts(depth));
        }
        if (isNamed("Polygon") || isNamed("PolygonPatch") || isNamed("Triangle") || isNamed("Rectangle")) {
            return polygonOf(takeParts(depth));
        }
        if (isNamed("Surface") || isNamed("CompositeSurface") || isNamed("PolyhedralSurface") ||
            isNamed("Tin")) {
            Parts patches = takeParts(depth);
            return patches.size() == 1 ? patches.front()
                                       : collectionOf(std::move(patches), GeometryType::MultiPolygon);
        }
        struct Named {
            const char* name;
            GeometryType type;
        };
        constexpr Named collections[] = {{"MultiPoint", GeometryType::MultiPoint},
                                         {"MultiLineString", GeometryType::MultiLineString},
                                         {"MultiCurve", GeometryType::MultiLineString},
                                         {"MultiPolygon", GeometryType::MultiPolygon},
                                         {"MultiSurface", GeometryType::MultiPolygon},
                                         {"MultiGeometry", GeometryType::GeometryCollection}};
        for (const Named& each : collections) {
            if (isNamed(each.name)) {
                return collectionOf(takeParts(depth), each.type);
            }
        }
        Parts within = takeParts(depth);
        if (within.size() < 2) {
            return within.empty() ? nullptr : within.front();
        }
        isWrapper_ = true; // a member element with several parts
        return std::make_shared<GeometryCollection>(GeometryType::GeometryCollection, space,
                                                    std::move(within));
    }

    QXmlStreamReader xml_;
    bool isKml_;
    bool isWrapper_ = false; ///< of what takeElement gave last only the parts count
    bool hasHeights_ = false;
    bool isSystemGiven_ = false;
    bool isFlipped_ = false;
    int dimension_ = 2;
    std::shared_ptr<cs::CoordSystem> system_;
    std::vector<double> values_;
};

std::shared_ptr<Geometry> readXml(std::string_view text, bool isKml) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "слишком длинный текст"));
    }
    return Reader(text, isKml).read();
}

} // namespace

std::shared_ptr<Geometry> fromGml(std::string_view text) {
    return readXml(text, false);
}

std::shared_ptr<Geometry> fromKml(std::string_view text) {
    return readXml(text, true);
}

} // namespace orvane::geometry
