#include "platform/geometry/forms/TextReader.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace orvane::geometry {

namespace {

constexpr const char* openExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужна «(» или EMPTY");
constexpr const char* closeExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужна «,» или «)»");
constexpr const char* kindExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужен вид геометрии");
constexpr const char* numberExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужно число");
constexpr const char* endExpected = QT_TRANSLATE_NOOP("orvane::geometry", "за геометрией есть ещё текст");
constexpr const char* unevenOrdinates =
    QT_TRANSLATE_NOOP("orvane::geometry", "у положения не столько чисел, сколько у других");
constexpr const char* openRing = QT_TRANSLATE_NOOP("orvane::geometry", "кольцо не замкнуто");
constexpr const char* tooDeep = QT_TRANSLATE_NOOP("orvane::geometry", "геометрии вложены слишком глубоко");
constexpr const char* halfArc =
    QT_TRANSLATE_NOOP("orvane::geometry", "у дуг нечётное число положений, от трёх");
constexpr const char* otherPart =
    QT_TRANSLATE_NOOP("orvane::geometry", "часть другого вида, чем должна быть");
constexpr const char* sridExpected =
    QT_TRANSLATE_NOOP("orvane::geometry", "нет координатной системы с таким кодом");

struct Keyword {
    std::string_view word;
    GeometryType type;
};
constexpr Keyword keywords[] = {
    {"POINT", GeometryType::Point},
    {"LINESTRING", GeometryType::LineString},
    {"POLYGON", GeometryType::Polygon},
    {"TRIANGLE", GeometryType::Polygon},
    {"MULTIPOINT", GeometryType::MultiPoint},
    {"MULTILINESTRING", GeometryType::MultiLineString},
    {"MULTIPOLYGON", GeometryType::MultiPolygon},
    {"POLYHEDRALSURFACE", GeometryType::MultiPolygon},
    {"TIN", GeometryType::MultiPolygon},
    {"GEOMETRYCOLLECTION", GeometryType::GeometryCollection},
    {"CIRCULARSTRING", GeometryType::CircularString},
    {"COMPOUNDCURVE", GeometryType::CompoundCurve},
    {"CURVEPOLYGON", GeometryType::CurvePolygon},
    {"MULTICURVE", GeometryType::MultiCurve},
    {"MULTISURFACE", GeometryType::MultiSurface},
};

char upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool isLetter(char letter) {
    return upper(letter) >= 'A' && upper(letter) <= 'Z';
}

class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    std::shared_ptr<Geometry> read() {
        const std::shared_ptr<cs::CoordSystem> system = takeSystem();
        const std::size_t start = at_;
        std::shared_ptr<Geometry> geometry = takeTagged(0);
        if (dimensions_ && hasUnsureEmpty_) { // something empty stood before the first number
            at_ = start;
            geometry = takeTagged(0);
        }
        skipSpace();
        if (at_ < text_.size()) {
            fail(endExpected);
        }
        geometry->setCoordSystem(system);
        return geometry;
    }

private:
    [[noreturn]] void fail(const char* what) const { fail(what, at_); }
    [[noreturn]] void fail(const char* what, std::size_t at) const {
        qint64 characters = 1;
        for (const char byte : text_.substr(0, at)) {
            characters += (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U ? 0 : 1;
        }
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "знак %0: %1."), QString::number(characters),
                      QCoreApplication::translate("orvane::geometry", what));
    }

    void skipSpace() {
        constexpr std::string_view space = " \t\r\n";
        at_ = std::min(text_.find_first_not_of(space, at_), text_.size());
    }

    bool takes(char mark) {
        skipSpace();
        if (at_ < text_.size() && text_[at_] == mark) {
            ++at_;
            return true;
        }
        return false;
    }

    void require(char mark, const char* expected) {
        if (!takes(mark)) {
            fail(expected);
        }
    }

    /// The letters that stand next, in upper case.
    std::string peekWord() {
        skipSpace();
        std::string word;
        for (std::size_t i = at_; i < text_.size() && isLetter(text_[i]); ++i) {
            word += upper(text_[i]);
        }
        return word;
    }

    bool takesWord(std::string_view word) {
        if (peekWord() != word) {
            return false;
        }
        at_ += word.size();
        return true;
    }

    std::shared_ptr<cs::CoordSystem> takeSystem() {
        if (!takesWord("SRID")) {
            return nullptr;
        }
        require('=', kindExpected);
        skipSpace();
        int code = 0;
        const auto end = std::from_chars(text_.data() + at_, text_.data() + text_.size(), code);
        if (end.ec != std::errc()) {
            fail(numberExpected);
        }
        std::shared_ptr<cs::CoordSystem> system;
        try {
            system = code > 0 ? cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(code) : nullptr;
        } catch (const std::runtime_error&) {
            fail(sridExpected);
        }
        at_ = static_cast<std::size_t>(end.ptr - text_.data());
        require(';', kindExpected);
        return system;
    }

    void setDimensions(Dimensions dimensions, std::size_t at) {
        if (dimensions_ && *dimensions_ != dimensions) {
            fail(unevenOrdinates, at);
        }
        dimensions_ = dimensions;
    }

    /// The kind with its ordinates: "POINT", "pointz", "Point ZM".
    GeometryType takeKind() {
        const std::string word = peekWord();
        for (const Keyword& each : keywords) {
            const std::string_view rest =
                word.starts_with(each.word) ? std::string_view(word).substr(each.word.size()) : "-";
            if (rest.empty() || rest == "Z" || rest == "M" || rest == "ZM") {
                const std::size_t at = at_;
                at_ += word.size();
                const std::string flags = rest.empty() ? peekWord() : std::string(rest);
                if (flags == "Z" || flags == "M" || flags == "ZM") {
                    at_ += rest.empty() ? flags.size() : 0;
                    setDimensions(makeDimensions(flags.front() == 'Z', flags.back() == 'M'), at);
                }
                return each.type;
            }
        }
        fail(kindExpected);
    }

    std::shared_ptr<Geometry> takeTagged(int depth) {
        constexpr int deepest = 32;
        skipSpace();
        if (depth >= deepest) {
            fail(tooDeep);
        }
        return takeBody(takeKind(), depth);
    }

    /// Whether something is empty; else its list is open.
    bool takesEmpty() {
        if (takesWord("EMPTY")) {
            hasUnsureEmpty_ = hasUnsureEmpty_ || !dimensions_;
            return true;
        }
        require('(', openExpected);
        return false;
    }

    Dimensions dimensions() const { return dimensions_.value_or(Dimensions::XY); }

    void takePosition(std::vector<double>& values) {
        skipSpace();
        const std::size_t start = at_;
        std::size_t count = 0;
        for (; count < 4; ++count) {
            skipSpace();
            at_ += at_ < text_.size() && text_[at_] == '+' ? 1 : 0;
            double value = 0.0;
            const auto end = std::from_chars(text_.data() + at_, text_.data() + text_.size(), value);
            if (end.ec != std::errc() || !std::isfinite(value)) {
                break;
            }
            values.push_back(value);
            at_ = static_cast<std::size_t>(end.ptr - text_.data());
        }
        if (count < 2) {
            fail(numberExpected);
        }
        if (count == 3 && !dimensions_) {
            dimensions_ = Dimensions::XYZ;
        } else if (count != 3 || strideOf(dimensions()) != 3) {
            setDimensions(count == 2   ? Dimensions::XY
                          : count == 3 ? Dimensions::XYZ
                                       : Dimensions::XYZM,
                          start);
        }
    }

    CoordinateSequence takePositions() {
        std::vector<double> values;
        if (!takesEmpty()) {
            do {
                takePosition(values);
            } while (takes(','));
            require(')', closeExpected);
        }
        return {dimensions(), values};
    }

    std::vector<CoordinateSequence> takeRings() {
        std::vector<CoordinateSequence> rings;
        if (!takesEmpty()) {
            do {
                skipSpace();
                const std::size_t start = at_;
                rings.push_back(takePositions());
                if (!rings.back().isEmpty() && !rings.back().isClosed()) {
                    fail(openRing, start);
                }
            } while (takes(','));
            require(')', closeExpected);
        }
        return rings;
    }

    std::shared_ptr<Geometry> takePoint() {
        std::vector<double> values;
        if (takesEmpty()) {
            return std::make_shared<Point>(dimensions());
        }
        takePosition(values);
        require(')', closeExpected);
        return std::make_shared<Point>(dimensions(), values.data());
    }

    /// A part of a multi-point may stand without parentheses.
    std::shared_ptr<Geometry> takePointOfMany() {
        skipSpace();
        if (at_ < text_.size() && (text_[at_] == '(' || isLetter(text_[at_]))) {
            return takePoint();
        }
        std::vector<double> values;
        takePosition(values);
        return std::make_shared<Point>(dimensions(), values.data());
    }

    /// Parts, those of the plain kind without their keyword.
    std::vector<GeometryPtr> takeParts(std::optional<GeometryType> plain, int depth) {
        std::vector<GeometryPtr> parts;
        if (!takesEmpty()) {
            do {
                skipSpace();
                const bool isTagged =
                    !plain || (at_ < text_.size() && isLetter(text_[at_]) && peekWord() != "EMPTY");
                parts.push_back(plain == GeometryType::Point ? takePointOfMany()
                                : isTagged                   ? takeTagged(depth + 1)
                                                             : takeBody(*plain, depth + 1));
            } while (takes(','));
            require(')', closeExpected);
        }
        return parts;
    }

    std::shared_ptr<Geometry> takeBody(GeometryType type, int depth) {
        const std::size_t start = at_;
        const bool isArc = type == GeometryType::CircularString;
        try {
            return makeBody(type, depth);
        } catch (const std::invalid_argument&) {
            fail(isArc ? halfArc : otherPart, start);
        }
    }

    std::shared_ptr<Geometry> makeBody(GeometryType type, int depth) {
        using Type = GeometryType;
        const auto collection = [&](std::optional<Type> plain) {
            std::vector<GeometryPtr> parts = takeParts(plain, depth);
            return std::make_shared<GeometryCollection>(type, dimensions(), std::move(parts));
        };
        switch (type) {
        case Type::Point: return takePoint();
        case Type::LineString: return std::make_shared<LineString>(takePositions());
        case Type::CircularString: return std::make_shared<CircularString>(takePositions());
        case Type::Polygon: {
            std::vector<CoordinateSequence> rings = takeRings();
            return std::make_shared<Polygon>(dimensions(), std::move(rings));
        }
        case Type::CompoundCurve: {
            std::vector<GeometryPtr> parts = takeParts(Type::LineString, depth);
            return std::make_shared<CompoundCurve>(dimensions(), std::move(parts));
        }
        case Type::CurvePolygon: {
            std::vector<GeometryPtr> rings = takeParts(Type::LineString, depth);
            return std::make_shared<CurvePolygon>(dimensions(), std::move(rings));
        }
        case Type::MultiPoint: return collection(Type::Point);
        case Type::MultiLineString:
        case Type::MultiCurve: return collection(Type::LineString);
        case Type::MultiPolygon:
        case Type::MultiSurface: return collection(Type::Polygon);
        default: return collection(std::nullopt);
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::optional<Dimensions> dimensions_; ///< of the whole text, once something told them
    bool hasUnsureEmpty_ = false;
};

} // namespace

std::shared_ptr<Geometry> fromWkt(std::string_view text) {
    return Reader(text).read();
}

} // namespace orvane::geometry
