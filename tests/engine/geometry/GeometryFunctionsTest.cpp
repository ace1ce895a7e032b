#include "SqlDatabase.h"

#include <gtest/gtest.h>

namespace orvane::tests {

namespace {

TEST(GeometryRecords, ExamplesGiveTheirResults) {
    SqlDatabase database;
    for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
        std::string expression = record.example;
        if (expression.find("RoundBy") != std::string::npos) {
            expression.replace(expression.find("RoundBy"), 7, "Round");
        }
        EXPECT_EQ(database.value(expression), record.result) << record.name << ": " << expression;
    }
}

} // namespace

} // namespace orvane::tests
