#pragma once

#include "host/adaptor/FunctionRecord.h"
#include <orvane/engine/EngineCache.h>

#include <QString>

#include <memory>
#include <vector>

namespace orvane::test {

/// An in-memory database with the functions of these families.
class SqlFunctions {
public:
    SqlFunctions();

    static std::vector<adaptor::FunctionRecord> records();

    /// Storage class and value of the expression ("text abc", "integer 3", "real 1.5", "null", "blob 00FF"),
    /// or "error" and the message. Names of our functions may be keywords of SQLite: they are quoted first.
    QString evaluate(const QString& expression) const;
    /// One value of a statement, parameters bound as texts.
    QString run(const QString& sql, const std::vector<QString>& parameters = {}) const;

    sqlite3* handle() const { return database_.get(); }

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    struct Cache : engine::EngineCache {
        std::shared_ptr<cs::CoordSystem> tableCS(const QString&) override { return nullptr; }
    };
    Cache cache_;
    std::unique_ptr<sqlite3, Close> database_;
};

} // namespace orvane::test
