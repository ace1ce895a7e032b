#include "AdaptorFixture.h"

#include "support/DefaultLocale.h"

#include "host/adaptor/functions/FunctionReference.h"
#include "host/adaptor/functions/FunctionRegistry.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QLocale>

#include <algorithm>
#include <string_view>

namespace orvane {

namespace {

class FunctionReferenceTest : public testing::AdaptorTest {
protected:
    const tests::DefaultLocale locale_{"C"};
};

constexpr int everyKind = 11;

} // namespace

/// Those with a result run in the document's own test.
TEST_F(FunctionReferenceTest, ExamplesWithoutResultRun) {
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        if (!record.result) {
            const QString sql = engine().translate(std::string("Select ") + record.example);
            EXPECT_THAT(testing::answer(engine().engineDatabase(), sql),
                        ::testing::Not(::testing::StartsWith("error")))
                << record.name;
        }
    }
}

/// ORVANE_WRITE_REFERENCE=1 writes the file instead.
TEST_F(FunctionReferenceTest, TheReferenceIsThatOfTheRunningEngine) {
    const std::string reference = adaptor::functionReference();
    QFile file(QStringLiteral(ORVANE_DOCS "/functions.md"));
    if (qEnvironmentVariableIsSet("ORVANE_WRITE_REFERENCE")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reference.data(), static_cast<qint64>(reference.size()));
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().toStdString() == reference)
        << "docs/functions.md is stale: run this test with ORVANE_WRITE_REFERENCE=1";
}

TEST_F(FunctionReferenceTest, HelpKnowsTheNamesOfTheDialect) {
    EXPECT_THAT(adaptor::functionHelp("round"), ::testing::StartsWith("Round(x"));
    EXPECT_THAT(adaptor::functionHelp("AREA"), ::testing::HasSubstr("ObjectArea"));
    EXPECT_THAT(adaptor::functionHelp("lcase"), ::testing::StartsWith("LoCase(text)"));
    EXPECT_EQ(adaptor::functionHelp("nothing"), "");
}

TEST_F(FunctionReferenceTest, EveryFunctionOfTheDialectIsDescribedOrRetired) {
    const auto present = engine().functionSet(sql::FunctionInfo::TypeMasks(everyKind));
    for (const sql::FunctionInfo& info : sql::functionInfos()) {
        EXPECT_NE(adaptor::functionHelp(info.name), "") << info.name;
        EXPECT_EQ(present.count(QString::fromUtf8(info.name)), 1U) << info.name;
    }
    EXPECT_EQ(sql::functionInfos().size(), 697u);
    EXPECT_EQ(adaptor::functionHelp("st_cutter"), "ST_Cutter is not supported; use Intersection\n");
}

/// A name that SQLite is given as it stands reaches a record's function too, not SpatiaLite's. What a record
/// describes and does not replace is a library's: none of these takes a geometry.
TEST_F(FunctionReferenceTest, NoNameReachesAFunctionThatTakesGeometriesUnlikeOurs) {
    const auto records = adaptor::allFunctionRecords();
    for (const sql::FunctionInfo& info : sql::functionInfos()) {
        const bool isKnown =
            std::any_of(records.begin(), records.end(),
                        [&info](const adaptor::FunctionRecord& record) { return record.isNamed(info.name); });
        const bool isRefused = adaptor::functionHelp(info.name).find("not supported") != std::string::npos;
        EXPECT_TRUE(isKnown || isRefused || info.name == std::string_view("Round")) << info.name;
    }
    for (const adaptor::FunctionRecord& record : records) {
        if (!record.isRegistered()) {
            EXPECT_EQ(std::string(record.signature).find("obj"), std::string::npos) << record.name;
        }
    }
}

TEST_F(FunctionReferenceTest, TheCatalogueTellsKindsApart) {
    using Info = sql::FunctionInfo;
    EXPECT_EQ(engine().functionList(Info::Window).size(), 11);
    const auto scalar = engine().functionSet(Info::Scalar), aggregate = engine().functionSet(Info::Aggregate);
    EXPECT_TRUE(scalar.count(QStringLiteral("MAX")) && aggregate.count(QStringLiteral("max")));
    EXPECT_TRUE(aggregate.count(QStringLiteral("wtavg")) && !scalar.count(QStringLiteral("wtavg")));
    EXPECT_TRUE(engine().sqlFunctionSet(Info::Scalar).contains(static_cast<sql::FunctionName>(1)));
    const QStringList names = engine().functionList(Info::Scalar);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end(), engine::caseInsensitiveLess()));
    const sql::OperatorSet operators = engine().operatorList();
    EXPECT_EQ(operators.count(), 41);
    EXPECT_FALSE(operators.contains(sql::OperationCode::Case) ||
                 operators.contains(sql::OperationCode::Cast));
    EXPECT_TRUE(operators.contains(static_cast<sql::OperationCode>(43)));
}

} // namespace orvane
