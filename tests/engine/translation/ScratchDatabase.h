#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

namespace orvane::tests {

/// A database in memory with the tables that the texts in tests/data/dialect name, the collation Locale, and
/// functions under all names that translated texts call. The functions do nothing: statements are prepared
/// here, not run.
class ScratchDatabase {
public:
    ScratchDatabase();

    /// SQLite's opinion of a statement: empty when it accepts it.
    std::string prepareError(const std::string& text);

    sqlite3* handle() const { return database_.get(); }

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
};

} // namespace orvane::tests
