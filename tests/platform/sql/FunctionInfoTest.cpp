#include "platform/sql/tree/FunctionInfo.h"

#include <QString>

#include <gtest/gtest.h>

#include <set>

namespace orvane::tests {
namespace {

using namespace sql;

int countOf(FunctionInfo::TypeMasks mask) {
    FunctionSet set;
    set.fillByMask(mask, true);
    return set.count();
}

TEST(FunctionInfo, NamesAndKindsAreThoseThatHostsCountOn) {
    EXPECT_EQ(functionInfos().size(), 697u);
    EXPECT_EQ(countOf(FunctionInfo::Aggregate), 15 + 7);
    EXPECT_EQ(countOf(FunctionInfo::Window), 11);
    EXPECT_EQ(countOf(FunctionInfo::Scalar), 697 - 15 - 11);
    for (const int unused : {0, 48, 56, 57, 701, 1023}) {
        EXPECT_EQ(FunctionNameInfo::name(static_cast<FunctionName>(unused)), nullptr) << unused;
    }
    std::set<QString> names;
    for (const FunctionInfo& info : functionInfos()) {
        EXPECT_STREQ(FunctionNameInfo::name(info.code), info.name);
        EXPECT_TRUE(names.insert(QString::fromUtf8(info.name).toLower()).second) << info.name;
    }
}

TEST(FunctionInfo, SetsAddAndTakeOut) {
    FunctionSet set;
    EXPECT_FALSE(set.contains(static_cast<FunctionName>(700)));
    set.reserve(functionNameLimit);
    EXPECT_EQ(set.count(), 0);
    set.fillByMask(FunctionInfo::Scalar | FunctionInfo::Aggregate, true);
    set.fillByMask(FunctionInfo::Aggregate, false);
    EXPECT_EQ(set.count(), 697 - 15 - 7 - 11);
    EXPECT_FALSE(set.contains(static_cast<FunctionName>(43)));
    EXPECT_FALSE(set.contains(static_cast<FunctionName>(4000)));

    QBitArray bits(44);
    bits.setBit(30);
    const OperatorSet operators(bits);
    EXPECT_TRUE(operators.contains(OperationCode::Add));
    EXPECT_FALSE(operators.contains(OperationCode::Collate));
}

} // namespace
} // namespace orvane::tests
