#include "host/adaptor/functions/FunctionReference.h"

#include "host/adaptor/functions/FunctionRegistry.h"
#include "platform/sql/tree/FunctionInfo.h"
#include <orvane/engine/FunctionNames.h>

#include <sqlite3.h>

#include <memory>
#include <set>

namespace orvane::adaptor {

namespace {

struct NameLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return sqlite3_stricmp(a.c_str(), b.c_str()) < 0;
    }
};
using Names = std::set<std::string, NameLess>;

std::string dialectName(const char* sqlName) {
    return engine::dialectFunctionName(QString::fromLatin1(sqlName)).toStdString();
}

/// The names of all functions of a connection.
Names functionsOf(sqlite3* database) {
    Names names;
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, "Select Distinct name From pragma_function_list", -1, &statement, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement, &sqlite3_finalize);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        names.emplace(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
    }
    return names;
}

void appendEntry(std::string& text, const FunctionRecord& record) {
    text += std::string("**`") + record.signature + "`** " + record.summary;
    if (dialectName(record.name) != record.name) {
        text += std::string(" In SQL: `") + record.name + "`.";
    }
    const std::vector<const char*> names = record.names();
    for (std::size_t i = 1; i < names.size(); ++i) {
        text += std::string(i == 1 ? " Also: `" : ", `") + names[i] + '`';
    }
    text += names.size() > 1 ? "." : "";
    text += std::string("  \n`") + record.example + '`';
    if (record.result) {
        text += std::string(" is `") + record.result + '`';
    }
    text += "\n\n";
}

void appendNames(std::string& text, const char* heading, const Names& names) {
    text += std::string("## ") + heading + "\n\n";
    for (const std::string& name : names) {
        text += (&name == &*names.begin() ? "`" : ", `") + name + '`';
    }
    text += "\n\n";
}

/// SpatiaLite's functions are those that come with the libraries besides SQLite's own.
bool isSpatial(const std::string& name) {
    static const Names plain = [] {
        sqlite3* database = nullptr;
        sqlite3_open(":memory:", &database);
        Names names = functionsOf(database);
        sqlite3_close(database);
        return names;
    }();
    return plain.count(name) == 0;
}

} // namespace

std::string functionReference(sqlite3* database) {
    std::string text =
        "# Functions\n\nWritten by the tests from the running engine (see `FunctionReferenceTest`); results "
        "are "
        "as the shell prints them.\nText functions count UTF-16 code units, and half of a pair becomes "
        "U+FFFD. "
        "NULL in gives NULL out unless a line says otherwise;\nunits and a coordinate system that are NULL "
        "count "
        "as left out. Pictures of numbers and times and the reading of dates are\ndescribed in "
        "[formats.md](formats.md).\n\n";
    Names described;
    std::string group;
    for (const FunctionRecord& record : allFunctionRecords()) {
        if (group != record.group) {
            group = record.group;
            text += "## " + group + "\n\n";
        }
        for (const char* name : record.names()) {
            described.insert(name);
        }
        appendEntry(text, record);
    }
    const Names available = functionsOf(database);
    Names ofSqlite, ofSpatialite;
    for (const sql::FunctionInfo& info : sql::functionInfos()) {
        if (described.count(info.name) == 0 && available.count(info.name) != 0) {
            (isSpatial(info.name) ? ofSpatialite : ofSqlite).insert(info.name);
        }
    }
    text += "The functions below are documented by the libraries that they come with.\n\n";
    appendNames(text, "SQLite", ofSqlite);
    appendNames(text, "SpatiaLite", ofSpatialite);
    text.pop_back();
    return text;
}

std::string functionHelp(std::string_view name) {
    const std::string asked(name);
    std::string text;
    for (const FunctionRecord& record : allFunctionRecords()) {
        if (!record.isNamed(asked.c_str()) &&
            sqlite3_stricmp(dialectName(record.name).c_str(), asked.c_str()) != 0) {
            continue;
        }
        text += std::string(record.signature) + "\n  " + record.summary + "\n  " + record.example;
        text += record.result ? std::string(" -> ") + record.result + "\n" : "\n";
    }
    return text;
}

} // namespace orvane::adaptor
