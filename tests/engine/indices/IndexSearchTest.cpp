#include "IndexFixture.h"

#include "platform/decimal/QDecNumber.h"

#include <QDateTime>

#include <limits>

namespace orvane::engine {

namespace {

class IndexSearch : public IndexFixture {
protected:
    int makeIndex(std::initializer_list<int> types) {
        EXPECT_TRUE(store_->createStorage(makeSchema(types)));
        Columns columns;
        for (quint32 i = 0; i < types.size(); ++i) {
            columns.push_back({i, Operation::Equal});
        }
        return store_->addIndex(columns);
    }

    using Rows = std::vector<qint64>;
};

TEST_F(IndexSearch, AppliesEveryComparison) {
    const int index = makeIndex({QMetaType::Int});
    insert(index, {{10}, {20}, {QVariant()}, {30}, {20}});
    struct Case {
        quint8 operation;
        QVariant value;
        Rows rows;
    };
    const std::vector<Case> cases = {
        {Operation::Equal, 20, {1, 4}},
        {Operation::Is, 20, {1, 4}},
        {Operation::Greater, 20, {3}},
        {Operation::LessOrEqual, 20, {0, 1, 4}},
        {Operation::Less, 20, {0}},
        {Operation::GreaterOrEqual, 20, {1, 3, 4}},
        {Operation::NotEqual, 20, {0, 3}},
        {Operation::IsNot, 20, {0, 2, 3}},
        {Operation::Like, QStringLiteral("_0"), {0, 1, 3, 4}},
        {Operation::Like, QStringLiteral("2%"), {1, 4}}, // a number: its digits are no range
        {Operation::Glob, QStringLiteral("[13]*"), {0, 3}},
        {Operation::Equal, QVariant(), {2}},
        {Operation::Greater, QVariant(QVariant::Int), {2}},
        {Operation::Equal, 99, {}},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(find(index, {{0, test.operation, test.value}}), test.rows)
            << int(test.operation) << " " << qPrintable(test.value.toString());
    }
}

TEST_F(IndexSearch, FindsValuesOfEveryTypeAgain) {
    const QDate date(1969, 12, 31);
    const std::vector<std::pair<int, std::vector<QVariant>>> cases = {
        {QMetaType::Bool, {false, true}},
        {QMetaType::Int, {std::numeric_limits<int>::min(), 0}},
        {QMetaType::LongLong, {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()}},
        {QMetaType::Double, {-1e-300, 0.1, 1.0, std::numeric_limits<double>::infinity()}},
        {QMetaType::QString, {text("O'Нил"), text(""), text("🎄"), text("a b")}},
        {QMetaType::QDate, {date, QDate(2024, 2, 29)}},
        {QMetaType::QTime, {QTime(0, 0), QTime(23, 59, 59, 999)}},
        {QMetaType::QDateTime, {QDateTime(date, QTime(1, 2, 3, 4)), QDateTime(date, QTime(1, 2, 3, 5))}},
        {qMetaTypeId<QDecNumber>(),
         {QVariant::fromValue(QDecNumber::fromString(text("12.30"))), QVariant::fromValue(QDecNumber(0.5))}},
    };
    for (const auto& [type, values] : cases) {
        const int index = makeIndex({type});
        const qint64 first = cache_.idLimit();
        std::vector<std::vector<QVariant>> rows;
        for (const QVariant& value : values) {
            rows.push_back({value});
        }
        rows.push_back({QVariant()});
        insert(index, rows);
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(find(index, {{0, Operation::Equal, values[i]}}), Rows{first + qint64(i)})
                << QMetaType::typeName(type) << " " << qPrintable(values[i].toString());
        }
        EXPECT_EQ(find(index, {{0, Operation::Equal, QVariant()}}), Rows{first + qint64(values.size())});
    }
}

TEST_F(IndexSearch, ComparesTextsByTheLocaleAndCombinesConditions) {
    const int index = makeIndex({QMetaType::QString, QMetaType::Int});
    insert(index, {{text("Ёлка"), 1}, {text("ЁЛКА"), 2}, {text("ёлка"), QVariant()}, {text("Elka"), 1}});
    EXPECT_EQ(find(index, {{0, Operation::Equal, text("ёЛкА")}}), (Rows{0, 1, 2}));
    EXPECT_EQ(find(index, {{0, 1, text("ёлка")}, {1, 1, 1}}), Rows{0});
    EXPECT_EQ(find(index, {{0, 1, text("ёлка")}, {1, 1, QVariant()}}), Rows{2});
    EXPECT_EQ(find(index, {{0, 1, text("ёлка")}, {7, 1, 5}}), (Rows{0, 1, 2})); // 7 is not covered: ignored
    EXPECT_TRUE(find(index, {{7, 1, 5}}).empty());
    EXPECT_TRUE(find(index, {}).empty());
    EXPECT_TRUE(find(99, {{0, 1, 5}}).empty());
}

TEST_F(IndexSearch, LooksUpWithOperandsThatCompareAsInSql) {
    const int index = makeIndex({QMetaType::QString, QMetaType::Double});
    insert(index,
           {{text("b"), 2.5}, {text("A"), 1}, {QVariant(), 7}, {text("a"), QVariant()}, {text("B"), -1}});
    struct Case {
        Columns columns;
        Cells operands;
        Rows rows; ///< in the order of the index
    };
    const std::vector<Case> cases = {
        {{}, {}, {2, 3, 1, 4, 0}},
        {{{0, Operation::Equal}}, {dp::Cell::ofText("B")}, {4, 0}},
        {{{0, Operation::Equal}}, {dp::Cell()}, {}},
        {{{0, Operation::Is}}, {dp::Cell()}, {2}},
        {{{0, Operation::IsNot}}, {dp::Cell()}, {3, 1, 4, 0}},
        {{{0, Operation::Equal}, {1, Operation::Greater}},
         {dp::Cell::ofText("b"), dp::Cell::ofInteger(2)},
         {0}},
        {{{1, Operation::GreaterOrEqual}, {1, Operation::Less}},
         {dp::Cell::ofReal(-1), dp::Cell::ofReal(2.5)},
         {1, 4}},
        {{{0, Operation::Like}}, {dp::Cell::ofText("a%")}, {3, 1}},
        {{{0, Operation::Like}}, {dp::Cell::ofText("%")}, {3, 1, 4, 0}},
        {{{0, Operation::Like}}, {dp::Cell()}, {}},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto ascending = store_->getLookup(index, cases[i].columns, EngineIndices::RowOrder::Ascending);
        EXPECT_EQ(rowsOf(*ascending, cases[i].operands), cases[i].rows) << "case " << i;
        const auto descending =
            store_->getLookup(index, cases[i].columns, EngineIndices::RowOrder::Descending);
        EXPECT_EQ(rowsOf(*descending, cases[i].operands), Rows(cases[i].rows.rbegin(), cases[i].rows.rend()))
            << "case " << i;
    }
}

TEST_F(IndexSearch, KeepsLookUpsOfOneShapeApart) {
    const int index = makeIndex({QMetaType::QString});
    insert(index, {{text("abc")}, {text("abd")}, {text("abc")}, {text("x")}});
    const Columns equal = {{0, Operation::Equal}};
    const Columns like = {{0, Operation::Like}};
    for (int round = 0; round < 2; ++round) { // the second one on the statements of the first
        const auto outer = store_->getLookup(index, equal);
        const auto inner = store_->getLookup(index, equal);
        outer->start(Cells{dp::Cell::ofText("abc")});
        qint64 row = -1;
        ASSERT_TRUE(outer->next(row));
        EXPECT_EQ(row, 0);
        EXPECT_EQ(rowsOf(*inner, {dp::Cell::ofText("x")}), Rows{3});
        ASSERT_TRUE(outer->next(row));
        EXPECT_EQ(row, 2);
        EXPECT_FALSE(outer->next(row));
        // Patterns with and without a range change the statement of one look-up.
        const auto patterns = store_->getLookup(index, like);
        EXPECT_EQ(rowsOf(*patterns, {dp::Cell::ofText("AB%")}), (Rows{0, 2, 1}));
        EXPECT_EQ(rowsOf(*patterns, {dp::Cell::ofText("%X")}), Rows{3});
        EXPECT_EQ(rowsOf(*patterns, {dp::Cell::ofText("ab_")}), (Rows{0, 2, 1}));
    }
    EXPECT_THROW(store_->getLookup(index, equal)->start({}), std::logic_error);
    EXPECT_EQ(store_->getLookup(index, Columns{{1, Operation::Equal}}), nullptr);
    EXPECT_EQ(store_->getLookup(index, Columns{{0, 0}}), nullptr);
}

TEST_F(IndexSearch, ALookUpMayOutliveItsStore) {
    const int index = makeIndex({QMetaType::Int});
    insert(index, {{5}, {6}});
    const Columns equal = {{0, Operation::Equal}};
    const auto lookup = store_->getLookup(index, equal);
    EXPECT_EQ(rowsOf(*lookup, {dp::Cell::ofInteger(6)}), Rows{1});
    store_.reset();
}

} // namespace

} // namespace orvane::engine
