#include "support/Kinds.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/relations/Relations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace orvane::tests {

namespace {

using namespace geometry;

constexpr double pi = std::numbers::pi;

std::shared_ptr<CircularString> arcs(std::initializer_list<double> values) {
    return std::make_shared<CircularString>(
        CoordinateSequence(Dimensions::XY, std::span(values.begin(), values.size())));
}

const CoordinateSequence& lineOf(const GeometryPtr& geometry) {
    return static_cast<const LineString&>(*geometry).coordinates();
}

TEST(Curves, ChordsStayWithinTheTolerance) {
    const auto quarter = arcs({1000, 0, 1000 * std::cos(pi / 4), 1000 * std::sin(pi / 4), 0, 1000});
    for (const double tolerance : {0.001, 0.1, 10.0, 5000.0}) {
        const GeometryPtr line = quarter->approximateGeometry(QSizeF(tolerance, tolerance * 2));
        const CoordinateSequence& positions = lineOf(line);
        for (std::size_t i = 1; i < positions.size(); ++i) {
            EXPECT_NEAR(std::hypot(positions.x(i), positions.y(i)), 1000, 1e-9);
            const double middle =
                std::hypot(positions.x(i) + positions.x(i - 1), positions.y(i) + positions.y(i - 1)) / 2;
            EXPECT_LE(1000 - middle, std::min(tolerance, 293.0) + 1e-9);
        }
        // Not many more than needed either.
        const double step = 2 * std::acos(1 - std::min(tolerance / 1000, 0.29));
        EXPECT_LE(static_cast<double>(positions.size()), pi / 2 / step + 3);
    }
    const CoordinateSequence byDefault = lineOf(quarter->approximateGeometry(QSizeF()));
    EXPECT_EQ(byDefault.x(0), 1000);
    EXPECT_EQ(byDefault.y(byDefault.size() - 1), 1000);
    EXPECT_EQ(byDefault.size(), 57U);
}

TEST(Curves, DegenerateArcs) {
    EXPECT_EQ(toWkt(*arcs({0, 0, 1, 1, 2, 2})->approximateGeometry(QSizeF())), "LINESTRING(0 0,1 1,2 2)");
    EXPECT_EQ(toWkt(*arcs({5, 5, 5, 5, 5, 5})->approximateGeometry(QSizeF())), "LINESTRING(5 5,5 5,5 5)");
    // A full circle begins and ends at the same position.
    EXPECT_NEAR(cartesianLength(*arcs({2, 0, -2, 0, 2, 0}), QString()), 4 * pi, 1e-12);
    EXPECT_THROW(arcs({0, 0, 1, 1}), std::invalid_argument);
}

TEST(Curves, HeightsAreInterpolatedOverTheMiddle) {
    const double values[] = {1, 0, 0, /**/ 0, 1, 90, /**/ -1, 0, 190};
    const CircularString half(CoordinateSequence(Dimensions::XYZ, values));
    const GeometryPtr line = half.approximateGeometry(QSizeF(0.01, 0.01));
    const CoordinateSequence& positions = lineOf(line);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double degrees = std::atan2(positions.y(i), positions.x(i)) * 180 / pi;
        const double height = degrees <= 90 ? degrees : 90 + (degrees - 90) * 100 / 90;
        EXPECT_NEAR(positions.position(i)[2], height, 1e-9);
    }
}

TEST(Curves, EnvelopesAreThoseOfTheCurve) {
    const Envelope half = arcs({1, 0, 0, 1, -1, 0})->envelope();
    EXPECT_NEAR(half.maxY, 1, 1e-15);
    EXPECT_EQ(half.minY, 0);
    const Envelope clockwise = arcs({1, 0, 0, -1, -1, 0})->envelope();
    EXPECT_NEAR(clockwise.minY, -1, 1e-15);
    EXPECT_EQ(clockwise.maxY, 0);
    const Ellipse ellipse(10, 20, 5, 2, 30);
    const Envelope exact = ellipse.envelope();
    const Envelope sampled = ellipse.approximateGeometry(QSizeF(1e-7, 1e-7))->envelope();
    EXPECT_NEAR(exact.minX, sampled.minX, 1e-6);
    EXPECT_NEAR(exact.maxY, sampled.maxY, 1e-6);
}

TEST(Curves, MeasuresAreThoseOfTheCurve) {
    EXPECT_NEAR(cartesianArea(Ellipse(0, 0, 3, 2), QString()), 6 * pi, 1e-12);
    // Ramanujan's second approximation is right to 1e-7 here.
    const double h = 1.0 / 25.0;
    EXPECT_NEAR(cartesianPerimeter(Ellipse(0, 0, 3, 2), QString()),
                pi * 5 * (1 + 3 * h / (10 + std::sqrt(4 - 3 * h))), 1e-6);
    const RoundedRectangle rounded({0, 0, 10, 6}, 1, 1);
    EXPECT_NEAR(cartesianArea(rounded, QString()), 60 - (4 - pi), 1e-12);
    EXPECT_NEAR(cartesianPerimeter(rounded, QString()), 32 - 8 + 2 * pi, 1e-12);
    EXPECT_EQ(cartesianPerimeter(RoundedRectangle({0, 0, 10, 6}, 0, 0), QString()), 32);
    const CurvePolygon ringed(Dimensions::XY, {arcs({5, 0, -5, 0, 5, 0}), arcs({1, 0, -1, 0, 1, 0})});
    EXPECT_NEAR(cartesianArea(ringed, QString()), 24 * pi, 1e-12);
    EXPECT_NEAR(cartesianPerimeter(ringed, QString()), 12 * pi, 1e-12);
}

TEST(Curves, StandardKindsKeepTheShape) {
    const GeometryPtr circle = std::make_shared<Ellipse>(1, 2, 3, 3);
    const GeometryPtr rounded = std::make_shared<RoundedRectangle>(Envelope{0, 0, 10, 6}, 2, 2);
    for (const GeometryPtr& shape : {circle, rounded}) {
        const GeometryPtr standard = inStandardKinds(shape);
        ASSERT_EQ(standard->type(), GeometryType::CurvePolygon);
        EXPECT_NEAR(cartesianArea(*standard, QString()), cartesianArea(*shape, QString()), 1e-12);
        EXPECT_NEAR(cartesianPerimeter(*standard, QString()), cartesianPerimeter(*shape, QString()), 1e-12);
    }
    // A rounded rectangle that is a circle has no sides left.
    const auto round = inStandardKinds(std::make_shared<RoundedRectangle>(Envelope{0, 0, 4, 4}, 9, 9));
    EXPECT_NEAR(cartesianArea(*round, QString()), 4 * pi, 1e-12);
}

TEST(Curves, TransformedCurvesAreLinear) {
    const auto factory = cs::CoordSysFactory::defaultCoordSysFactory();
    const Ellipse source(500000, 6e6, 1000, 1000);
    const auto circle = source.clone();
    circle->setCoordSystem(factory->createFromEpsg(32636));
    const GeometryPtr geographic = circle->transformed(factory->createFromEpsg(4326));
    ASSERT_TRUE(geographic);
    EXPECT_EQ(geographic->type(), GeometryType::Polygon);
    // The scale in the middle of the zone is 0.9996.
    EXPECT_NEAR(sphericalArea(*geographic, QString()), pi * 1e6 / (0.9996 * 0.9996), 1000);
}

TEST(Curves, InvalidShapesAreRefused) {
    EXPECT_THROW(Ellipse(0, 0, 0, 1), std::invalid_argument);
    EXPECT_THROW(Ellipse(0, 0, INFINITY, 1), std::invalid_argument);
    EXPECT_THROW(RoundedRectangle(Envelope(), 0, 0), std::invalid_argument);
    EXPECT_THROW(CompoundCurve(Dimensions::XY, {std::make_shared<Point>(1, 2)}), std::invalid_argument);
    EXPECT_THROW(GeometryCollection(GeometryType::MultiPoint, Dimensions::XY, {nullptr}),
                 std::invalid_argument);
    EXPECT_THROW(GeometryCollection(GeometryType::Point, Dimensions::XY, {}), std::invalid_argument);
}

} // namespace

} // namespace orvane::tests
