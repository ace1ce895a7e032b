#include "platform/sql/lexing/Script.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "platform/sql/printing/SqlStringBuilder.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Any bytes: the lexer and the parser come to an end without a fault, a refusal names its place, and what the
// dialect prints it understands again.

using namespace orvane;

namespace {

[[noreturn]] void report(const char* what, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", what, text.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    sql::splitScript(text);
    sql::SqlParser parser(nullptr);
    if (!parser.parse(text)) {
        if (parser.errors().empty() || !parser.errors().front()->place()) {
            report("a refusal without a place", text);
        }
        return 0;
    }
    const std::string printed =
        sql::toUtf8(sql::SqlStringBuilder(nullptr).buildString(*parser.result().node()));
    sql::SqlParser again(nullptr);
    if (!again.parse(printed)) {
        const std::string reason = again.errors().front()->what();
        if (reason.find("вложенность больше") != reason.npos) {
            return 0; // by the parentheses that printing adds
        }
        report(reason.c_str(), printed);
    }
    const std::string reprinted =
        sql::toUtf8(sql::SqlStringBuilder(nullptr).buildString(*again.result().node()));
    if (reprinted != printed) {
        report("printed differently the second time", printed + '\n' + reprinted);
    }
    return 0;
}
