#include "IndexFixture.h"

#include "support/RandomText.h"

#include "platform/core/SqliteException.h"
#include "platform/work/Cancellation.h"

#include <cmath>
#include <random>

namespace orvane::engine {

namespace {

class RowLoaderTest : public IndexFixture {
protected:
    int makeIndex() {
        EXPECT_TRUE(store_->createStorage(makeSchema({QMetaType::QString, QMetaType::Double})));
        return store_->addIndex({{0, Operation::Equal}, {1, Operation::Equal}});
    }

    std::vector<qint64> all(int index) {
        return rowsOf(*store_->getLookup(index, {}, EngineIndices::RowOrder::Ascending), {});
    }
};

/// Under the collation Locale, and by the bytes of the texts.
class RowLoaderOrder : public RowLoaderTest, public testing::WithParamInterface<bool> {};

TEST_P(RowLoaderOrder, StoresWhatAnInserterStoresAndKnowsTheSameGroups) {
    store_ = makeStore(cache_, GetParam());
    const std::string longWord(300, 'x');
    const auto words = tests::pieces("|a|A|ab|Ё|ё|🎄|z|Zz|Я|я|\uffee|" + longWord + "1|" + longWord + "2" +
                                     (GetParam() ? "" : "|\x01|\x01\x01|\x01\x02|\x02|\x02\x01|\xc2\x80"));
    const auto differentWords = GetParam() ? 11U : words.size(); // in more than their letters' case
    const std::vector<double> numbers = {-1e300, -1, -0.0, 0, 0.5, 3, 1e18};
    std::mt19937 random(7);
    std::vector<std::vector<QVariant>> rows;
    std::map<QString, qint64> groups;
    for (int i = 0; i < 2000; ++i) {
        const auto word = unsigned(random() % unsigned(words.size() + 1));
        const auto number = unsigned(random() % unsigned(numbers.size() + 1));
        rows.push_back({word == words.size() ? QVariant() : QString::fromStdString(words[word]),
                        number == numbers.size() ? QVariant() : numbers[number]});
        const QString key = rows.back()[0].isValid() ? rows.back()[0].toString() : QStringLiteral("NULL");
        ++groups[GetParam() ? key.toCaseFolded() : key];
    }
    const int inserted = makeIndex();
    insert(inserted, rows);
    const std::vector<qint64> expected = all(inserted);
    const IndexStatistics statistics = store_->statistics(inserted);

    const int loaded = makeIndex();
    const auto loader = store_->getLoader(loaded);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const QByteArray utf8 = rows[i][0].toString().toUtf8();
        const double number = rows[i][1].toDouble();
        const bool isWhole = number == std::floor(number) && i % 2 == 0; // integers among the reals
        const Cells cells = {rows[i][0].isValid()
                                 ? dp::Cell::ofText({utf8.constData(), std::size_t(utf8.size())})
                                 : dp::Cell(),
                             !rows[i][1].isValid()               ? dp::Cell()
                             : isWhole && std::abs(number) < 1e9 ? dp::Cell::ofInteger(qint64(number))
                                                                 : dp::Cell::ofReal(number)};
        loader->addRow(qint64(i), cells);
    }
    loader->finish();
    EXPECT_EQ(all(loaded), expected);
    EXPECT_EQ(store_->statistics(loaded).known, statistics.known);
    EXPECT_EQ(store_->statistics(loaded).rows, statistics.rows);
    EXPECT_EQ(store_->statistics(loaded).largestGroup, statistics.largestGroup);
    EXPECT_EQ(store_->statistics(loaded).smallestGroup, statistics.smallestGroup);
    EXPECT_EQ(store_->groups(loaded, 1).number, differentWords + 1); // with NULL among both
    EXPECT_EQ(store_->groups(loaded, 1).largest,
              std::max_element(groups.begin(), groups.end(), [](const auto& a, const auto& b) {
                  return a.second < b.second;
              })->second);
    EXPECT_EQ(store_->groups(loaded, 2).number, (differentWords + 1) * 7);
    EXPECT_EQ(store_->groups(loaded, 2).largest, statistics.largestGroup);
    EXPECT_EQ(store_->groups(loaded, 3).number, 0);
}

INSTANTIATE_TEST_SUITE_P(Orders, RowLoaderOrder, testing::Bool());

TEST_F(RowLoaderTest, TextsWithZerosInThemStayApart) {
    store_ = makeStore(cache_, false);
    const int index = makeIndex();
    const auto loader = store_->getLoader(index);
    using namespace std::string_view_literals;
    const std::string_view texts[] = {"\2"sv, "\1\2"sv, "\1\1"sv, "\1"sv, "\0\1"sv, "\0\0"sv, "\0"sv, ""sv};
    for (qint64 row = 0; row < qint64(std::size(texts)); ++row) {
        loader->addRow(row, Cells{dp::Cell::ofText(texts[row]), dp::Cell::ofInteger(1)});
    }
    loader->finish();
    EXPECT_EQ(store_->groups(index, 1).number, std::size(texts));
    EXPECT_EQ(all(index), (std::vector<qint64>{7, 6, 5, 4, 3, 2, 1, 0}));
}

TEST_F(RowLoaderTest, AddsToTheRowsThatAreThere) {
    const int index = makeIndex();
    insert(index, {{text("b"), 1}, {text("b"), 1}});
    const auto loader = store_->getLoader(index);
    loader->addRow(10, Cells{dp::Cell::ofText("B"), dp::Cell::ofInteger(1)});
    loader->addRow(11, Cells{dp::Cell::ofText("a"), dp::Cell()});
    loader->finish();
    EXPECT_EQ(all(index), (std::vector<qint64>{11, 0, 1, 10}));
    EXPECT_EQ(store_->statistics(index).rows, 4);
    EXPECT_EQ(store_->statistics(index).largestGroup, 3);
}

TEST_F(RowLoaderTest, StoresAllOrNothing) {
    const int index = makeIndex();
    insert(index, {{text("b"), 1}});
    const Cells cells = {dp::Cell::ofText("a"), dp::Cell::ofInteger(1)};
    store_->getLoader(index)->addRow(5, cells); // not finished
    EXPECT_EQ(all(index), std::vector<qint64>{0});
    {
        const auto loader = store_->getLoader(index);
        loader->addRow(5, cells);
        loader->addRow(5, cells);
        EXPECT_THROW(loader->finish(), err::SqliteException); // a row is in an index once
    }
    {
        const auto loader = store_->getLoader(index);
        loader->addRow(5, cells);
        work::Cancellation::cancelAll();
        EXPECT_THROW(loader->finish(), work::Cancelled);
    }
    EXPECT_THROW(store_->getLoader(index)->addRow(5, Cells{}), std::logic_error);
    EXPECT_EQ(all(index), std::vector<qint64>{0});
    EXPECT_EQ(store_->statistics(index).rows, 1);
    EXPECT_EQ(store_->getLoader(99), nullptr);
}

TEST_F(RowLoaderTest, AnEmptyTableHasNoGroups) {
    const int index = makeIndex();
    store_->getLoader(index)->finish();
    EXPECT_EQ(store_->statistics(index).known, 7U);
    EXPECT_EQ(store_->statistics(index).rows, 0);
    EXPECT_EQ(store_->groups(index, 1).number, 0);
    EXPECT_TRUE(all(index).empty());
}

} // namespace

} // namespace orvane::engine
