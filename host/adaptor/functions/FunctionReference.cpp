#include "host/adaptor/functions/FunctionReference.h"

#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/adaptor/functions/RetiredFunctions.h"
#include <orvane/engine/FunctionNames.h>

#include <sqlite3.h>

#include <algorithm>
#include <vector>

namespace orvane::adaptor {

namespace {

std::string dialectName(const char* sqlName) {
    return engine::dialectFunctionName(QString::fromLatin1(sqlName)).toStdString();
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

} // namespace

std::string functionReference() {
    std::string text =
        "# Functions\n\nWritten by the tests from the running engine (see `FunctionReferenceTest`); results "
        "are "
        "as the shell prints them.\nText functions count UTF-16 code units, and half of a pair becomes "
        "U+FFFD. "
        "NULL in gives NULL out unless a line says otherwise;\nunits and a coordinate system that are NULL "
        "count "
        "as left out. Pictures of numbers and times and the reading of dates are\ndescribed in "
        "[formats.md](formats.md). What is no object counts as NULL for measures, relations and conversions; "
        "for all other\nfunctions of objects it is an error.\n\n";
    const std::vector<FunctionRecord> records = allFunctionRecords();
    std::vector<std::string> groups; // several tables may have functions of one group
    for (const FunctionRecord& record : records) {
        if (std::find(groups.begin(), groups.end(), record.group) == groups.end()) {
            groups.emplace_back(record.group);
        }
    }
    for (const std::string& group : groups) {
        text += "## " + group + "\n\n";
        for (const FunctionRecord& record : records) {
            if (group == record.group) {
                appendEntry(text, record);
            }
        }
    }
    text += "## Not supported\n\nThese names are known, and calls of them are errors that say what to use "
            "instead.\n\n";
    for (const RetiredFunction& function : retiredFunctions()) {
        text += std::string("- `") + function.name + '`';
        text += function.instead ? std::string(": `") + function.instead + "`\n" : "\n";
    }
    text += '\n';
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
    for (const RetiredFunction& function : retiredFunctions()) {
        if (sqlite3_stricmp(function.name, asked.c_str()) == 0) {
            text += refusal(function) + '\n';
        }
    }
    return text;
}

} // namespace orvane::adaptor
