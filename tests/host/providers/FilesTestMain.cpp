#include "platform/log/Logger.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    orvane::loggerInstance()->exchangeSink({}); // the tests read damaged files on purpose
    return RUN_ALL_TESTS();
}
