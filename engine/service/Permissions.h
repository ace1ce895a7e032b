#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace orvane {

/// What statements may do on the engine connection that are not the engine's own (engine::OwnStatements):
/// read every table, change rows of the tables that the engine has made, call the functions that are allowed
/// here. SQLite asks for each step while it prepares a statement, so a row costs nothing.
class Permissions {
public:
    /// Takes out of the connection what nobody needs, and watches it from then on. The database is not owned;
    /// `letGo` has to be called before it or this object goes.
    explicit Permissions(sqlite3* database);
    void letGo();

    /// A name of scalar, aggregate and table-valued functions alike, in any letter case.
    void allow(std::string_view function) { allowed_.emplace(function); }
    bool allows(std::string_view function) const { return allowed_.count(function) != 0; }
    /// The names of the connection's modules.
    std::vector<std::string> modules() const;
    /// Refuses the table-valued functions of all modules but these until they are allowed: SQLite shows them
    /// as tables. For modules that were loaded since.
    void closeModulesBut(const std::vector<std::string>& known);

    /// What was refused last, in SQLite's words: "Attach other.db". Empty when nothing was.
    const std::string& refused() const { return refused_; }

private:
    /// Names of SQLite: letter case of ASCII makes no difference.
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const;
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };
    using NameSet = std::unordered_set<std::string, Hash, Equal>;

    static int authorize(void* self, int action, const char* first, const char* second, const char* database,
                         const char* trigger) noexcept;
    bool permits(int action, std::string_view first, std::string_view second) const;
    bool isOpen(std::string_view table) const {
        return closedModules_.empty() || closedModules_.count(table) == 0 || allows(table);
    }

    sqlite3* database_;
    NameSet allowed_;
    NameSet closedModules_;
    std::string refused_;
};

} // namespace orvane
