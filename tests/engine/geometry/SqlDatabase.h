#pragma once

#include "host/adaptor/FunctionRecord.h"
#include "platform/cs/CoordSystem.h"
#include <orvane/engine/EngineCache.h>

#include <QString>

#include <sqlite3.h>

#include <spatialite.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace orvane::tests {

/// A cache that knows one table.
class TestCache : public engine::EngineCache {
public:
    std::shared_ptr<cs::CoordSystem> tableCS(const QString& tableName) override {
        return tableName == QLatin1String("SomeTable")
                   ? cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(32636)
                   : nullptr;
    }
};

/// An in-memory database with SpatiaLite and the geometry functions.
class SqlDatabase {
public:
    SqlDatabase() {
        sqlite3_open(":memory:", &handle_);
        spatialite_ = spatialite_alloc_connection();
        spatialite_init_ex(handle_, spatialite_, 0);
        for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
            for (int arity = record.arity.minimum; arity <= record.arity.maximum; ++arity) {
                sqlite3_create_function_v2(handle_, record.name, arity, record.encoding, &cache_,
                                           record.scalar, nullptr, nullptr, nullptr);
            }
        }
    }
    ~SqlDatabase() {
        spatialite_cleanup_ex(spatialite_);
        sqlite3_close(handle_);
    }

    sqlite3* handle() const { return handle_; }
    TestCache& cache() { return cache_; }

    /// The first value as text, "NULL" for none, "error: ..." for a failed statement.
    std::string value(const std::string& expression) {
        sqlite3_stmt* statement = nullptr;
        const std::string sql = "Select " + expression;
        if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
            return std::string("error: ") + sqlite3_errmsg(handle_);
        }
        std::string text;
        if (sqlite3_step(statement) != SQLITE_ROW) {
            text = std::string("error: ") + sqlite3_errmsg(handle_);
        } else if (const unsigned char* bytes = sqlite3_column_text(statement, 0)) {
            text = reinterpret_cast<const char*>(bytes);
        } else {
            text = "NULL";
        }
        sqlite3_finalize(statement);
        return text;
    }

private:
    TestCache cache_;
    sqlite3* handle_ = nullptr;
    void* spatialite_ = nullptr;
};

} // namespace orvane::tests
