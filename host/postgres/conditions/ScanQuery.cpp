#include "host/postgres/conditions/ScanQuery.h"

#include "host/postgres/conditions/ServerCondition.h"
#include "platform/utils/Quoting.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orvane::postgres {

namespace {

/// The number of a row of a view, which has to be the same in every query: it is given before any condition,
/// and to whole rows, so that the server reads them the same way whatever columns are wanted.
constexpr const char* rowNumberName = "\"orvane row number\"";
constexpr const char* wholeRowName = "\"orvane row\"";

/// The place of a row in its table (type tid): its page above 16 bits, its position there below.
std::string placeText(std::int64_t place) {
    return '(' + std::to_string(place >> 16) + ',' + std::to_string(place & 0xFFFF) + ')';
}

std::string coordinate(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

} // namespace

std::string ScanQuery::nameOf(int attribute) const {
    const std::string name = utils::sqlIdentifier(column(attribute).name);
    return table_.key == RowKey::Number ? std::string("(t.") + wholeRowName + ")." + name : "t." + name;
}

std::string ScanQuery::source() const {
    const std::string name = table_.sqlName();
    return table_.key == RowKey::Number ? "(Select \"orvane source\" As " + std::string(wholeRowName) +
                                              ", pg_catalog.row_number() Over () As " + rowNumberName +
                                              " From " + name + " As \"orvane source\") t"
                                        : name + " t";
}

std::string ScanQuery::selected(const std::vector<int>& attributes) const {
    std::string text;
    for (const int attribute : attributes) {
        const ColumnDescription& each = column(attribute);
        const std::string name = nameOf(attribute);
        switch (each.kind) {
        case ValueKind::LocalMoment: text += name + "::timestamp"; break;
        case ValueKind::Shown: text += name + "::text"; break;
        case ValueKind::List: text += "pg_catalog.to_json(" + name + ")::text"; break;
        case ValueKind::Geography: text += table_.postgis + "ST_AsBinary(" + name + ")"; break;
        case ValueKind::Geometry:
            text += table_.postgis + "ST_AsBinary(";
            if (each.hasMixedSystems) {
                const std::string srid = std::to_string(each.srid);
                text += "Case When " + table_.postgis + "ST_SRID(" + name + ") In (0, " + srid + ") Then " +
                        name + " Else " + table_.postgis + "ST_Transform(" + name + ", " + srid + ") End";
            } else {
                text += name;
            }
            text += ")";
            break;
        default: text += name;
        }
        text += ", ";
    }
    return text + key();
}

std::string ScanQuery::key() const {
    std::string text;
    switch (table_.key) {
    case RowKey::Integer: return nameOf(table_.keyColumns.front()) + "::int8";
    case RowKey::Place: return "t.ctid";
    case RowKey::Number: return std::string("t.") + rowNumberName;
    case RowKey::Values: break;
    }
    for (std::size_t i = 0; i < table_.keyColumns.size(); ++i) {
        text += (i > 0 ? ", " : "") + nameOf(table_.keyColumns[i]) + "::text";
    }
    return text;
}

std::size_t ScanQuery::keySize() const {
    return table_.key == RowKey::Values ? table_.keyColumns.size() : 1;
}

Command ScanQuery::rows(const dp::ScanRequest& request, const std::vector<int>& attributes) const {
    Command command;
    std::vector<std::string> conditions;
    for (const dp::ScanTerm& term : request.terms) {
        if (auto text = termText(term, command.arguments)) {
            conditions.push_back(std::move(*text));
        }
    }
    if (request.window && usesWindow()) {
        conditions.push_back(windowText(*request.window));
    }
    if (request.ids) {
        conditions.push_back(condition(*request.ids, command.arguments));
    }
    command.sql = "Select " + selected(attributes) + " From " + source();
    for (std::size_t i = 0; i < conditions.size(); ++i) {
        command.sql += (i == 0 ? " Where " : " And ") + conditions[i];
    }
    if (request.limit >= 0) {
        command.sql += " Limit " + std::to_string(request.limit);
    }
    return command;
}

Command ScanQuery::sample(const std::vector<int>& attributes, double rows, double tableRows) const {
    constexpr double margin = 1.1;
    const double percent = 100 * margin * rows / std::max(1.0, tableRows);
    const std::string whole = "Select " + selected(attributes) + ", t.ctid From " + table_.sqlName() + " t";
    if (percent >= 100) {
        return {whole};
    }
    // Rows that lie together are alike: some of many pages tell more than all of a few.
    const int step = static_cast<int>(std::clamp(100 / percent, 1.0, 8.0));
    return {whole + " TableSample System (" + coordinate(std::max(percent * step, 1e-4)) +
            ") Repeatable (1) Where pg_catalog.hashtid(t.ctid) % " + std::to_string(step) + " = 0"};
}

Command ScanQuery::count() const {
    return {"Select pg_catalog.count(*) From " + table_.sqlName()};
}

Command ScanQuery::estimate() const {
    return {"Explain (Format Json) Select From " + table_.sqlName()};
}

bool ScanQuery::usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    return isTestable(column(attribute).kind, comparison, collation);
}

bool ScanQuery::usesWindow() const {
    const int geometry = table_.schema->geometryIndex();
    if (geometry < 0 || table_.key == RowKey::Number) {
        return false;
    }
    const ColumnDescription& each = column(geometry);
    // On the globe boxes are others; and the server refuses to compare systems.
    return each.kind == ValueKind::Geometry && each.isIndexed && each.srid > 0 && !each.hasMixedSystems;
}

std::optional<std::string> ScanQuery::termText(const dp::ScanTerm& term,
                                               std::vector<Argument>& arguments) const {
    const bool isNullTest =
        term.comparison == dp::Comparison::IsNull || term.comparison == dp::Comparison::IsNotNull;
    if (!isNullTest && !usesTerm(term.attribute, term.comparison, term.collation)) {
        return std::nullopt;
    }
    return serverCondition(nameOf(term.attribute), column(term.attribute).kind, term, arguments);
}

std::string ScanQuery::windowText(const geometry::Envelope& window) const {
    const int geometry = table_.schema->geometryIndex();
    if (!std::isfinite(window.minX + window.maxX + window.minY + window.maxY)) {
        return "true";
    }
    return nameOf(geometry) + " Operator(" + table_.postgis + "&&) " + table_.postgis + "ST_MakeEnvelope(" +
           coordinate(window.minX) + ", " + coordinate(window.minY) + ", " + coordinate(window.maxX) + ", " +
           coordinate(window.maxY) + ", " + std::to_string(column(geometry).srid) + ")";
}

std::string ScanQuery::condition(const std::vector<dp::FeatureId>& ids,
                                 std::vector<Argument>& arguments) const {
    const auto numbers = [&ids] {
        ArrayText list;
        for (const dp::FeatureId& id : ids) {
            bool isNumber = false;
            const qlonglong number = id.value().toLongLong(&isNumber);
            if (isNumber) {
                list.add(std::to_string(number));
            }
        }
        return std::move(list).finish();
    };
    switch (table_.key) {
    case RowKey::Integer:
        return nameOf(table_.keyColumns.front()) + " = Any(" + placeArgument(numbers(), "int8[]", arguments) +
               ")";
    case RowKey::Number:
        return std::string("t.") + rowNumberName + " = Any(" + placeArgument(numbers(), "int8[]", arguments) +
               ")";
    case RowKey::Place: {
        ArrayText places;
        for (const dp::FeatureId& id : ids) {
            places.add(placeText(id.value().toLongLong()));
        }
        return "t.ctid = Any(" + placeArgument(std::move(places).finish(), "tid[]", arguments) + ")";
    }
    case RowKey::Values: break;
    }
    const auto width = static_cast<int>(table_.keyColumns.size());
    std::vector<ArrayText> values(table_.keyColumns.size());
    for (const dp::FeatureId& id : ids) {
        const QStringList texts = id.value().toString().split(QLatin1Char(keySeparator));
        for (int i = 0; i < width && texts.size() == width; ++i) {
            values[static_cast<std::size_t>(i)].add(texts[i].toStdString());
        }
    }
    std::string names, arrays, columns;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string separator = i > 0 ? ", " : "";
        const ColumnDescription& key = column(table_.keyColumns[i]);
        names += separator + nameOf(table_.keyColumns[i]);
        arrays += separator + "pg_catalog.unnest(" +
                  placeArgument(std::move(values[i]).finish(), (key.type + "[]").c_str(), arguments) + ")";
        columns += separator + "k" + std::to_string(i);
    }
    return "(" + names + ") In (Select " + columns + " From Rows From (" + arrays + ") As u(" + columns +
           "))";
}

} // namespace orvane::postgres
