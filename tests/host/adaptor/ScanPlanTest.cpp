#include "host/adaptor/planning/ScanPlan.h"

#include <gtest/gtest.h>

using orvane::adaptor::ScanPlan;
using orvane::dp::Comparison;
using orvane::dp::TextCollation;

TEST(ScanPlan, SurvivesTheWayThroughSqlite) {
    ScanPlan plan;
    EXPECT_EQ(ScanPlan::fromText(plan.toText()), plan);
    plan.columnsUsed = ~std::uint64_t{0};
    plan.rowNumber = ScanPlan::RowNumber::In;
    plan.joined = 3;
    plan.relations = {{orvane::adaptor::SpatialRelation::Within, true, true},
                      {orvane::adaptor::SpatialRelation::Intersects, false}};
    plan.limit = plan.offset = true;
    plan.ordering = ScanPlan::Ordering::ByIndex;
    plan.order = {{3, true}, {70, false}};
    plan.terms = {{0, Comparison::Equal, TextCollation::Locale},
                  {1999, Comparison::In, TextCollation::Binary}};
    EXPECT_EQ(ScanPlan::fromText(plan.toText()), plan);
}

TEST(ScanPlan, LastBitOfTheMaskStandsForEveryFurtherColumn) {
    ScanPlan plan;
    plan.columnsUsed = std::uint64_t{1} << 63 | 1;
    EXPECT_TRUE(plan.usesColumn(0));
    EXPECT_FALSE(plan.usesColumn(62));
    EXPECT_TRUE(plan.usesColumn(63));
    EXPECT_TRUE(plan.usesColumn(200));
}
