#pragma once

#include "host/postgres/PostgresExtension.h"
#include "host/postgres/PostgresSource.h"
#include "host/postgres/TestServer.h"
#include "support/Host.h"
#include "support/Query.h"

#include <gmock/gmock.h>

namespace orvane::testing {

/// The engine over the tables of the test server, and files.
class PostgresHost : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static postgres::PostgresExtension* const extension = [] {
            auto* made = new postgres::PostgresExtension(nullptr);
            Host::instance().core.pluginManager()->registerExtension(made);
            made->linkDataCatalog();
            return made;
        }();
        ASSERT_TRUE(extension);
    }

    void SetUp() override {
        if (!TestServer::instance()) {
            GTEST_SKIP() << "PostgreSQL is not installed (packages postgresql, postgresql-15-postgis-3)";
        }
        server().sql("Drop Schema If Exists public Cascade; Create Schema public; Create Extension postgis");
    }
    void TearDown() override { Host::instance().closeAll(); }

    static TestServer& server() { return *TestServer::instance(); }

    /// Opens tables into the catalogue: all, or one by "|name".
    static std::vector<std::shared_ptr<postgres::PostgresTable>> open(const QString& table = {}) {
        auto tables = postgres::openServer(server().source() + table);
        for (const auto& each : tables) {
            each->setName(Host::instance().catalog.freeName(each->name()));
            Host::instance().catalog.add(each);
        }
        Host::deliverSignals();
        return tables;
    }
    static std::string ask(const char* statement) {
        return Host::instance().ask(QString::fromUtf8(statement));
    }
    /// A statement about transactions, which the dialect leaves as it is.
    static std::string run(const char* statement) {
        return answer(Host::instance().engine->engineDatabase(), QString::fromUtf8(statement));
    }
};

} // namespace orvane::testing
