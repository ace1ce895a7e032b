#include "IndexFixture.h"

namespace orvane::engine {

namespace {

class IndexStore : public IndexFixture {};

TEST_F(IndexStore, AnswersNothingBeforeItHasStorage) {
    EXPECT_FALSE(store_->isCorrect());
    EXPECT_EQ(store_->addIndex({{0, 1}}), -1);
    EngineIndices::Conformance conformance{0.25, true};
    EXPECT_EQ(store_->findIndex({{0, 1}}, &conformance), -1);
    EXPECT_EQ(conformance.score, 0.25); // untouched
    EXPECT_TRUE(store_->findRows(1, {{0, 1, 5}}).empty());
    EXPECT_EQ(store_->statistics(1).known, 0U);
    store_->setQuantity(7);
    EXPECT_EQ(store_->quantity(), 0U);
    EXPECT_EQ(store_->estimateRows(1, {{0, 1}}), 0U);
    EXPECT_EQ(store_->groups(1, 1).number, 0);
    EXPECT_EQ(store_->getLoader(1), nullptr);
    EXPECT_EQ(store_->getLookup(1, {}), nullptr);
    store_->dropIndex(1);
    store_->clearIndex(1);
    store_->flushInserter(nullptr);
    store_->flushInserter(store_->getInserter(1));
}

TEST_F(IndexStore, NeedsAnAttribute) {
    EXPECT_FALSE(store_->createStorage(dp::TableSchema()));
    EXPECT_TRUE(store_->createStorage(makeSchema({QMetaType::Int})));
    EXPECT_TRUE(store_->isCorrect());
    store_->dropStorage();
    EXPECT_FALSE(store_->isCorrect());
}

TEST_F(IndexStore, ReusesAnIndexThatServesEveryConditionAndNumbersNewOnes) {
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::Int, QMetaType::Int, QMetaType::Int,
                                                  QMetaType::Int, QMetaType::Int, QMetaType::QString})));
    EXPECT_EQ(store_->addIndex({{3, 1}}), 1);
    EXPECT_EQ(store_->addIndex({{3, 1}, {5, 1}}), 2);
    EXPECT_EQ(store_->addIndex({{5, 2}, {3, 1}}), 2);
    EXPECT_EQ(store_->addIndex({{3, 1}, {5, 9}}), 2);
    EXPECT_EQ(store_->addIndex({{99, 1}}), 1); // no condition is left, so every index serves
    EXPECT_EQ(store_->addIndex({{0, 1}}), 3);

    EngineIndices::Conformance conformance;
    EXPECT_EQ(store_->findIndex({{3, 1}, {5, 1}}, &conformance), 2);
    EXPECT_EQ(conformance.score, 1.0);
    EXPECT_TRUE(conformance.equalityOnly);
    EXPECT_EQ(store_->findIndex({{3, 1}}), 1); // both score 1: the older one
    EXPECT_EQ(store_->findIndex({{4, 1}}, &conformance), -1);
    EXPECT_EQ(conformance.score, 0.0);

    store_->dropIndex(2);
    EXPECT_EQ(store_->findIndex({{3, 1}, {5, 1}}, &conformance), 1);
    EXPECT_EQ(conformance.score, 0.5);
    EXPECT_EQ(store_->addIndex({{3, 1}, {5, 1}}), 4);
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::Int})));
    EXPECT_EQ(store_->findIndex({{0, 1}}), -1);
    EXPECT_EQ(store_->addIndex({{99, 1}}), -1);
    EXPECT_EQ(store_->addIndex({{0, 1}}), 6); // the number of the failure is used up
}

TEST_F(IndexStore, EnumeratesTheColumnsOfAnIndexUntilItIsStopped) {
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::Int, QMetaType::Int, QMetaType::Int})));
    const int index = store_->addIndex({{2, 3}, {1, 1}, {0, 1}});
    std::vector<int> attributes;
    const auto collect = [&attributes](int stopAt) {
        return [&attributes, stopAt](int attribute) {
            attributes.push_back(attribute);
            return attribute == stopAt ? EngineIndices::Status::Stop : EngineIndices::Status::Continue;
        };
    };
    store_->enumColumns(index, collect(-1));
    EXPECT_EQ(attributes, (std::vector<int>{1, 0, 2}));
    attributes.clear();
    store_->enumColumns(index, collect(1));
    EXPECT_EQ(attributes, std::vector<int>{1});
    store_->enumColumns(99, collect(-1));
    EXPECT_EQ(attributes.size(), 1U);
    EXPECT_THROW(store_->enumColumns(index, nullptr), std::bad_function_call);
}

TEST_F(IndexStore, WritesTheRowsOfAnInserterAsOneStatement) {
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::Int, QMetaType::QString})));
    const int index = store_->addIndex({{0, 1}, {1, 1}});
    auto inserter = store_->getInserter(index);
    EXPECT_EQ(inserter->tableName(), QStringLiteral("i1"));
    EXPECT_EQ(inserter->indexId(), index);
    const auto schema = std::make_shared<dp::TableSchema>(makeSchema({QMetaType::Int, QMetaType::QString}));
    for (int i = 0; i < 3; ++i) {
        cache_.assignIdToInt(dp::FeatureId(100 + i));
    }
    dp::Feature feature(schema, dp::FeatureId(102));
    feature.setAttribute(0, 12);
    feature.setAttribute(1, QStringLiteral("North"));
    inserter->addRow(feature);
    dp::Feature unnumbered(schema, dp::FeatureId(500));
    unnumbered.setAttribute(0, 13);
    inserter->addRow(unnumbered);
    EXPECT_EQ(inserter->sql(), QStringLiteral("Insert Into i1(c0,c1,id) Values(12,'North',2),(13,Null,-1)"));
    EXPECT_EQ(cache_.idLimit(), 3);
}

TEST_F(IndexStore, KnowsTheSizesOfGroupsAndEstimatesFromThem) {
    ASSERT_TRUE(store_->createStorage(makeSchema({QMetaType::Int, QMetaType::Int})));
    const int index = store_->addIndex({{0, 1}});
    insert(index, {{1}, {1}, {2}});
    const IndexStatistics& statistics = store_->statistics(index);
    EXPECT_EQ(statistics.known, 7U);
    EXPECT_EQ(statistics.rows, 3);
    EXPECT_EQ(statistics.largestGroup, 2);
    EXPECT_EQ(statistics.smallestGroup, 1);

    struct Case {
        Columns columns;
        unsigned long long rows;
    };
    const std::vector<Case> cases = {
        {{{0, Operation::Equal}}, 2},
        {{{0, Operation::Is}}, 2},
        {{{0, Operation::NotEqual}}, 2},
        {{{0, Operation::IsNot}}, 2},
        {{{0, Operation::Greater}}, 1},
        {{{0, Operation::Like}}, 1},
        {{{0, 1}, {1, Operation::Less}}, 1},
        {{}, 0},
        {{{7, 1}}, 0},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(store_->estimateRows(index, test.columns), test.rows)
            << (test.columns.empty() ? 0 : test.columns.front().operation);
    }
    EXPECT_EQ(store_->estimateRows(99, {{0, 1}}), 0U);

    EXPECT_EQ(store_->quantity(), 3U);
    store_->setQuantity(50);
    EXPECT_EQ(store_->quantity(), 50U);
    store_->setQuantity(0);
    EXPECT_EQ(store_->quantity(), 3U);

    store_->clearIndex(index);
    EXPECT_TRUE(find(index, {{0, 1, 1}}).empty());
    EXPECT_EQ(store_->statistics(index).rows, 3); // until rows are stored again
    insert(index, {{5}, {QVariant()}, {QVariant()}});
    EXPECT_EQ(store_->statistics(index).rows, 3);
    EXPECT_EQ(store_->statistics(index).largestGroup, 2);
}

} // namespace

} // namespace orvane::engine
