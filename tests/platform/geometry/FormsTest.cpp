#include "platform/geometry/editing/Editing.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextReader.h"
#include "platform/geometry/forms/TinyForms.h"
#include "platform/geometry/forms/XmlFormats.h"
#include "support/Kinds.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

namespace orvane::tests {

using namespace geometry;

namespace {

constexpr Dimensions everyDimensions[] = {Dimensions::XY, Dimensions::XYZ, Dimensions::XYM, Dimensions::XYZM};

std::string styled(const Geometry& geometry, const WktStyle& style) {
    std::string text;
    appendWkt(geometry, text, style);
    return text;
}

std::string extendedWkt(const Geometry& geometry) {
    return styled(geometry, {-1, true, true, true});
}

std::string gml(const Geometry& geometry) {
    std::string text;
    appendGml(geometry, 3, -1, text);
    return text;
}

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

/// What is written reads back as the same geometry, and what is read is written as the same text.
TEST(Forms, AreReadAsTheyWereWritten) {
    for (const Dimensions dimensions : everyDimensions) {
        for (const GeometryPtr& kind : allKinds(dimensions)) {
            const auto read = geometry::fromWkt(toWkt(*kind));
            EXPECT_TRUE(read->equals(*kind)) << toWkt(*kind);
            if (!kind->isEmpty()) { // an empty one does not tell its ordinates there
                EXPECT_EQ(extendedWkt(*geometry::fromWkt(extendedWkt(*kind))), extendedWkt(*kind));
            }
            const QByteArray wkb = GeometryFactory::toExtendedWkb(kind, 3857);
            EXPECT_TRUE(GeometryFactory::fromWkb(wkb, nullptr)->equals(*kind)) << toWkt(*kind);
            if (!isCurved(*kind) && dimensions != Dimensions::XYM) {
                const auto tiny = fromTwkb(view(toTwkb(*kind, {4, 4, 4, true, true})));
                EXPECT_EQ(styled(*tiny, {4}), styled(*kind, {4}));
            }
            if (!kind->isEmpty() && !hasM(dimensions) && kind->type() != GeometryType::CurvePolygon &&
                kind->type() != GeometryType::MultiSurface) { // whose rings are open here
                EXPECT_EQ(toWkt(*fromGml(gml(*kind))), toWkt(*kind));
            }
        }
    }
}

/// A few bytes of good texts and bytes are changed, cut out or repeated: a geometry or an error, never worse.
TEST(Forms, BrokenOnesAreErrors) {
    std::vector<std::string> good{
        R"({"type":"GeometryCollection","geometries":[{"type":"Point","coordinates":[1,2]}]})",
        "_p~iF~ps|U_ulLnnqC_mqNvxq`@"};
    for (const GeometryPtr& kind : allKinds(Dimensions::XYZ)) {
        good.push_back(toWkt(*kind));
        good.push_back(gml(*kind));
        good.emplace_back(view(toTwkb(*kind, {})));
    }
    std::mt19937 random(5);
    std::size_t numRead = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string bytes = good[random() % good.size()];
        for (auto changes = random() % 4; changes > 0 && !bytes.empty(); --changes) {
            const std::size_t at = random() % bytes.size();
            switch (random() % 3) {
            case 0: bytes[at] = static_cast<char>(random()); break;
            case 1: bytes.erase(at, random() % 5); break;
            default: bytes.insert(at, bytes.substr(at, random() % 9));
            }
        }
        const auto attempt = [&](const auto& read) {
            try {
                numRead += read(bytes) ? 1 : 0;
            } catch (const std::runtime_error&) {
                // That is what it should be.
            }
        };
        attempt([](std::string_view text) { return geometry::fromWkt(text); });
        attempt([](std::string_view text) { return fromGeoJson(text); });
        attempt([](std::string_view text) { return fromGml(text); });
        attempt([](std::string_view text) { return fromKml(text); });
        attempt([](std::string_view text) { return fromTwkb(text); });
        attempt([](std::string_view text) { return fromEncodedPolyline(text, 5).size() > 0; });
    }
    EXPECT_GT(numRead, 1000U);
}

/// A matrix undone by its inverse leaves every kind where it was, arcs as arcs.
TEST(Editing, MovesThereAndBack) {
    const AffineMap turn = AffineMap::rotation(AffineMap::Axis::Z, 90).then(AffineMap::translation(3, -5, 2));
    for (const Dimensions dimensions : everyDimensions) {
        for (const GeometryPtr& kind : allKinds(dimensions)) {
            EXPECT_EQ(toWkt(*withPositions(withPositions(kind, [](double* at, Dimensions) { at[0] *= 2; }),
                                           [](double* at, Dimensions) { at[0] /= 2; })),
                      toWkt(*kind));
            const GeometryPtr moved = geometry::moved(kind, turn);
            EXPECT_EQ(moved->type(), kind->type());
            const Envelope back = geometry::moved(moved, *turn.inverse())->envelope();
            const Envelope before = kind->envelope();
            EXPECT_TRUE(kind->isEmpty() || (std::abs(back.minX - before.minX) < 1e-9 &&
                                            std::abs(back.maxY - before.maxY) < 1e-9));
        }
    }
}

} // namespace

} // namespace orvane::tests
