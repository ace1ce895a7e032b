#include "host/desk/rows/RowStore.h"
#include "host/desk/query/ResultModel.h"

#include <QCoreApplication>
#include <QTableView>

#include <gmock/gmock.h>

#include <limits>
#include <thread>

namespace orvane::desk {
namespace {

TEST(RowStore, KeepsValuesOfEveryKindOverManyBlocks) {
    RowStore rows({QStringLiteral("n"), QStringLiteral("x"), QStringLiteral("t"), QStringLiteral("b")});
    const std::string longText(300'000, 'a');
    constexpr std::int64_t count = 20'000;
    for (std::int64_t row = 0; row < count; ++row) {
        row % 3 == 0 ? rows.appendNull() : rows.append(row - 5);
        rows.append(static_cast<double>(row) / 7);
        rows.appendText(row % 1000 == 0 ? longText : "текст 🙂 " + std::to_string(row));
        rows.appendBytes(std::string_view("\0\1", 2));
        rows.endRow();
    }
    EXPECT_LT(rows.rowCount(), count);
    rows.publish();
    ASSERT_EQ(rows.rowCount(), count);
    EXPECT_GT(rows.blocks().size(), 4u);
    std::thread([&] { // whichever thread looks
        for (const std::int64_t row : {std::int64_t{0}, std::int64_t{1}, std::int64_t{4242}, count - 1}) {
            const auto block = rows.blockOf(row);
            ASSERT_TRUE(block);
            const int at = static_cast<int>(row - block->firstRow());
            EXPECT_EQ(block->value(at, 0).kind, row % 3 == 0 ? Value::Kind::Null : Value::Kind::Integer);
            EXPECT_EQ(block->value(at, 0).integer, row % 3 == 0 ? 0 : row - 5);
            EXPECT_EQ(block->value(at, 1).real, static_cast<double>(row) / 7);
            EXPECT_EQ(block->value(at, 3).bytes, std::string_view("\0\1", 2));
            EXPECT_EQ(block->value(at, 2).bytes.size(),
                      row == 0 ? longText.size() : 16 + std::to_string(row).size());
        }
    })
        .join();
    EXPECT_FALSE(rows.blockOf(count));
    EXPECT_FALSE(rows.blockOf(-1));
}

TEST(RowStore, BoxesAreNotSmallerThanWhatTheyAreAround) {
    constexpr double large = 7'654'321.123456789;
    const geometry::Envelope envelope{-large, 0.1, large, large + 0.3};
    RowStore rows({QStringLiteral("id"), QStringLiteral("obj")});
    rows.append(std::int64_t{1}); // before the first geometry
    rows.appendNull();
    rows.endRow();
    rows.append(std::int64_t{2});
    rows.appendGeometry("wkb", envelope);
    rows.endRow();
    rows.publish();
    EXPECT_EQ(rows.geometryColumn(), 1);
    const auto block = rows.blockOf(0);
    EXPECT_TRUE(block->box(0).isEmpty());
    const Box box = block->box(1);
    EXPECT_LE(double{box.minX}, envelope.minX);
    EXPECT_LE(double{box.minY}, envelope.minY);
    EXPECT_GE(double{box.maxX}, envelope.maxX);
    EXPECT_GE(double{box.maxY}, envelope.maxY);
    EXPECT_TRUE(box.intersects({large, large, large + 1, large + 1}));
    EXPECT_FALSE(box.intersects({large + 2, 0, large + 3, 1}));
}

TEST(ResultModel, TellsTheViewOfAMillionRowsInPortions) {
    const auto rows = std::make_shared<RowStore>(QStringList{QStringLiteral("n"), QStringLiteral("name")});
    constexpr int count = 1'000'000;
    for (int row = 0; row < count; ++row) {
        rows->append(std::int64_t{row});
        rows->appendText("row");
        rows->endRow();
    }
    rows->publish();
    ResultModel model;
    QTableView view;
    view.resize(400, 300);
    view.setModel(&model);
    view.show();
    model.setRows(rows);
    EXPECT_LT(model.rowCount(), count / 5);
    int steps = 0;
    for (; model.rowCount() < count && steps < 100; ++steps) {
        view.scrollToBottom();
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(model.rowCount(), count);
    EXPECT_GT(steps, 3);
    EXPECT_EQ(model.data(model.index(count - 1, 0), Qt::DisplayRole).toString(), QStringLiteral("999999"));
    EXPECT_FALSE(model.canFetchMore({}));

    model.setRows(rows);
    model.reach(345'678); // as somebody picks a row that is far away
    EXPECT_GT(model.rowCount(), 345'678);
}

TEST(ResultModel, ShowsValuesAsPeopleReadThem) {
    RowStore rows({QStringLiteral("v")});
    const auto add = [&rows](auto append) {
        append();
        rows.endRow();
    };
    std::string polygon("\x01\x03\0\0\0\x01\0\0\0\x04\0\0\0", 13);
    polygon.append(4 * 2 * sizeof(double), '\0');
    add([&] { rows.appendNull(); });
    add([&] { rows.append(std::numeric_limits<std::int64_t>::min()); });
    add([&] { rows.append(0.1); });
    add([&] { rows.appendText("а\nб"); });
    add([&] { rows.appendText("\xD0\xD0 испорчен"); });
    add([&] { rows.appendText(std::string(299, 'x') + "я и дальше"); });
    add([&] { rows.appendBytes("12345"); });
    add([&] { rows.appendGeometry(polygon, {0, 0, 0, 0}); });
    rows.publish();
    QStringList texts;
    for (int row = 0; row < rows.rowCount(); ++row) {
        texts += shortText(rows.blockOf(row)->value(row, 0));
    }
    EXPECT_EQ(texts.mid(0, 4), (QStringList{QStringLiteral("NULL"), QStringLiteral("-9223372036854775808"),
                                            QStringLiteral("0.1"), QStringLiteral("а↵б")}));
    EXPECT_TRUE(texts[4].endsWith(QStringLiteral(" испорчен")));
    EXPECT_EQ(texts[5], QString(299, QLatin1Char('x')) + QStringLiteral("…")); // no half character
    EXPECT_EQ(texts[6], QStringLiteral("байт: 5"));
    EXPECT_EQ(texts[7], QStringLiteral("Полигон, вершин: 4"));
}

} // namespace
} // namespace orvane::desk
