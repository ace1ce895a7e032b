#include "host/shell/messages/PeerNames.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/NodeVisitor.h"

#include <algorithm>
#include <iterator>

namespace orvane::shell {

namespace {

struct PeerName {
    const char* elsewhere;
    const char* here;
};

constexpr PeerName names[] = {
    {"charindex", "InStr"},
    {"strpos", "InStr"},
    {"position", "InStr"},
    {"locate", "InStr"},
    {"char_length", "Len"},
    {"character_length", "Len"},
    {"initcap", "Capitalize"},
    {"isnull", "IfNull"},
    {"nvl", "IfNull"},
    {"to_char", "Format"},
    {"to_date", "StringToDate"},
    {"str_to_date", "StringToDate"},
    {"datepart", "Extract"},
    {"date_format", "FormatDate"},
    {"sysdate", "Now"},
    {"localtimestamp", "Now"},
    {"listagg", "String_Agg"},
    {"array_agg", "Json_Group_Array"},
    {"percentile_cont", "Percentile"},
    {"quantile", "Percentile"},
    {"regexp_like", "RegExp"},
    {"regexp_matches", "RegExp"},
    {"st_geogfromtext", "GeomFromText"},
    {"st_dump", "GeometryN"},
    {"st_setcrs", "SetSRID"},
};

} // namespace

QString nameHere(const QString& nameElsewhere) {
    const auto* const found =
        std::find_if(std::begin(names), std::end(names), [&nameElsewhere](const PeerName& each) {
            return nameElsewhere.compare(QLatin1String(each.elsewhere), Qt::CaseInsensitive) == 0;
        });
    return found != std::end(names) ? QString::fromLatin1(found->here) : QString();
}

bool roundsAsElsewhere(const sql::ast::Node& statement) {
    using namespace sql;
    bool found = false;
    ast::forEachNode(statement, [&found](const ast::Node& node) {
        const auto* call = ast::nodeAs<ast::Function>(&node);
        const auto* step = call && call->arguments.size() == 2 && toLowercase(call->name) == L"round"
                               ? ast::nodeAs<ast::Number>(call->arguments.back())
                               : nullptr;
        found = found || (step && step->text.size() == 1 && step->text.front() > L'1');
        return !found;
    });
    return found;
}

} // namespace orvane::shell
