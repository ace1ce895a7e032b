#include "host/maps/labels/LabelPlacer.h"

#include <gtest/gtest.h>

#include <QImage>

namespace orvane::maps {
namespace {

QFont font() {
    QFont made(QStringLiteral("DejaVu Sans"));
    made.setPixelSize(12);
    return made;
}

std::vector<LabelPlacer::Placed> placed(LabelPlacer& labels) {
    QImage image(400, 300, QImage::Format_RGB32);
    QPainter painter(&image);
    return labels.draw(painter);
}

TEST(Labels, neverOverlapAndStayInside) {
    const QRectF area(0, 0, 400, 300);
    const QRectF legend(250, 200, 150, 100);
    LabelPlacer labels(font(), area);
    labels.block(legend);
    for (int i = 0; i < 60'000; ++i) { // more than are kept
        labels.add({QStringLiteral("label %0").arg(i),
                    QPointF(i * 7919 % 400, i * 4729 % 300),
                    i % 2 == 0 ? LabelPlacer::Position::Beside : LabelPlacer::Position::Within,
                    3,
                    {},
                    i * 1.0});
    }
    const auto all = placed(labels);
    EXPECT_GT(all.size(), 45U);
    EXPECT_EQ(all.front().text, QStringLiteral("label 59999")) << "the most important one first";
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_TRUE(area.contains(all[i].rect));
        EXPECT_FALSE(legend.intersects(all[i].rect));
        for (std::size_t k = 0; k < i; ++k) {
            ASSERT_FALSE(all[i].rect.intersects(all[k].rect)) << all[i].text.toStdString();
        }
    }
}

TEST(Labels, takeOtherSidesAndRespectTheirRoom) {
    LabelPlacer labels(font(), QRectF(0, 0, 400, 300));
    const QPointF nearTheEdge(395, 150);
    labels.add({QStringLiteral("left of it"), nearTheEdge, LabelPlacer::Position::Beside, 4, {}, 2});
    labels.add({QStringLiteral("far too long for its area"),
                {100, 100},
                LabelPlacer::Position::Within,
                0,
                {30, 30},
                1});
    labels.add({QStringLiteral("in"), {100, 100}, LabelPlacer::Position::Within, 0, {30, 30}, 1});
    labels.add({QStringLiteral("  \n "), {200, 200}, LabelPlacer::Position::Within, 0, {}, 1});
    const auto all = placed(labels);
    ASSERT_EQ(all.size(), 2U);
    EXPECT_LT(all[0].rect.right(), nearTheEdge.x());
    EXPECT_NEAR(all[1].rect.center().x(), 100, 1);
}

} // namespace
} // namespace orvane::maps
