#pragma once

#include "support/PlainCache.h"

#include "host/adaptor/functions/FunctionRecord.h"

#include <QString>

#include <memory>
#include <vector>

namespace orvane::tests {

/// An in-memory database with SpatiaLite and the functions of all families.
class SqlFunctions {
public:
    SqlFunctions();

    /// The records of all families.
    static std::vector<adaptor::FunctionRecord> records();

    /// Storage class and value of the expression ("text abc", "integer 3", "real 1.5", "null", "blob 00FF"),
    /// or "error" and the message. Names of our functions may be keywords of SQLite: they are quoted first.
    QString evaluate(const QString& expression) const;
    /// One value of a statement, parameters bound as UTF-8 texts.
    QString run(const QString& sql, const std::vector<QByteArray>& parameters = {}) const;

    sqlite3* handle() const { return database_.get(); }
    engine::EngineCache& cache() { return cache_; }

private:
    struct Close {
        void operator()(sqlite3* database) const;
    };
    struct CleanUp {
        void operator()(void* spatialite) const;
    };

    PlainCache cache_;
    std::unique_ptr<void, CleanUp> spatialite_; ///< has to outlive the connection
    std::unique_ptr<sqlite3, Close> database_;
};

} // namespace orvane::tests
