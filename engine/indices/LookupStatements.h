#pragma once

#include "platform/dp/SqliteDatabaseAccess.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvane::engine {

/// Prepared searches by their shape, so that a look-up of a shape that was used before prepares nothing.
/// Keeps the database open for as long as a look-up uses it.
class LookupStatements {
public:
    explicit LookupStatements(std::shared_ptr<dp::SqliteDatabaseAccess> database)
        : database_(std::move(database)) {}

    /// A statement of that shape that nobody uses; `sql` is called for its text when there is none.
    template<typename Sql>
    dp::SqliteStatement take(const std::string& shape, const Sql& sql) {
        std::vector<dp::SqliteStatement>& idle = idle_[shape];
        if (idle.empty()) {
            return database_->query(sql(), dp::SqliteStatement::Use::Repeated);
        }
        dp::SqliteStatement statement = std::move(idle.back());
        idle.pop_back();
        return statement;
    }
    /// Gives a statement back.
    void put(const std::string& shape, dp::SqliteStatement statement) {
        statement.reset();
        idle_[shape].push_back(std::move(statement));
    }
    /// Forgets the statements that nobody uses.
    void clear() { idle_.clear(); }

private:
    std::shared_ptr<dp::SqliteDatabaseAccess> database_;
    std::unordered_map<std::string, std::vector<dp::SqliteStatement>>
        idle_; ///< destroyed before the database
};

} // namespace orvane::engine
