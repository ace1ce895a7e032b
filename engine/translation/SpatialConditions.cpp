#include "engine/translation/SpatialConditions.h"

#include "engine/translation/QueryParts.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/tree/Expressions.h"
#include "platform/sql/tree/NodeVisitor.h"
#include "platform/sql/tree/Queries.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/RelationName.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace orvane::engine {

namespace {

using namespace sql;

constexpr const wchar_t* isNear = L"IsNear";
constexpr const wchar_t* nearness = L"Nearness";
constexpr const wchar_t* mayMeet = L"MayMeet";

/// A function that tells a distance, or (`isTest`) whether it is at most its third argument.
struct DistanceFunction {
    std::wstring_view name;
    const wchar_t* kind; ///< the number of a geometry::DistanceKind
    bool isTest;
};
constexpr DistanceFunction functions[] = {
    {L"distance", L"0", false},
    {L"st_distance", L"0", false},
    {L"sphericalobjectdistance", L"1", false},
    {L"cartesianobjectdistance", L"2", false},
    {L"withindistance", L"0", true},
    {L"ptdistwithin", L"0", true},
    {L"st_dwithin", L"0", true},
};

/// What a term says: the distance between two objects is at most a value.
struct DistanceTerm {
    const ast::Function* call = nullptr;
    const DistanceFunction* function = nullptr;
    ast::NodePtr most;
};

std::optional<DistanceTerm> callOf(const ast::NodePtr& node, bool isTest) {
    const auto* call = ast::nodeAs<ast::Function>(node);
    if (!call || call->over || call->filter || call->distinct) {
        return std::nullopt;
    }
    const std::wstring name = toLowercase(call->name);
    const auto* known =
        std::find_if(std::begin(functions), std::end(functions), [&](const DistanceFunction& each) {
            return each.isTest == isTest && each.name == name;
        });
    const std::size_t fewest = isTest ? 3 : 2;
    if (known == std::end(functions) || call->arguments.size() < fewest ||
        call->arguments.size() > fewest + 1) {
        return std::nullopt;
    }
    return DistanceTerm{call, known, isTest ? call->arguments[2] : nullptr};
}

std::optional<DistanceTerm> termOf(const ast::NodePtr& condition) {
    const auto* operation = ast::nodeAs<ast::Operation>(condition);
    if (!operation) {
        return callOf(condition, true);
    }
    std::optional<DistanceTerm> term;
    ast::NodePtr most;
    switch (operation->code()) {
    case OperationCode::Greater:
    case OperationCode::GreaterOrEqual:
        term = callOf(operation->right(), false);
        most = operation->left();
        break;
    case OperationCode::Equal:
    case OperationCode::Less:
    case OperationCode::LessOrEqual:
        term = callOf(operation->left(), false);
        most = operation->right();
        break;
    case OperationCode::Between:
        if (const auto* range = ast::nodeAs<ast::Range>(operation->right())) {
            term = callOf(operation->left(), false);
            most = range->high;
        }
        break;
    default: break;
    }
    if (term) {
        term->most = most;
    }
    return term;
}

/// Whether a value may be written a second time: not where it is numbered by its place, dear, or another one
/// each time.
bool isRepeatable(const ast::NodePtr& value) {
    bool isFit = !hasNamelessParameter(*value);
    ast::forEachNode(*value, [&isFit](const ast::Node& node) {
        const auto* function = ast::nodeAs<ast::Function>(&node);
        const bool isUnfit =
            (function && (function->over || toLowercase(function->name).starts_with(L"random"))) ||
            node.kind == ast::NodeKind::QuerySpecification || node.kind == ast::NodeKind::QueryOperation ||
            node.kind == ast::NodeKind::ExplicitTable;
        isFit = isFit && !isUnfit;
        return isFit;
    });
    return isFit;
}

/// Whether a call depends on no row and on nothing that is bound later.
bool isConstant(const ast::NodePtr& value) {
    bool isFit = value->kind == ast::NodeKind::Function && isRepeatable(value);
    ast::forEachNode(*value, [&isFit](const ast::Node& node) {
        const auto* parameter = ast::nodeAs<ast::ContextuallyTypedValueSpecification>(&node);
        isFit = isFit && node.kind != ast::NodeKind::ColumnReference &&
                !(parameter && !parameter->parameter.empty());
        return isFit;
    });
    return isFit;
}

ast::NodePtr number(const wchar_t* digits) {
    return std::make_shared<ast::Number>(digits);
}

/// The value as the planner of a join can see it.
ast::NodePtr known(const ast::NodePtr& value, const ScannedTables& tables, const LiteralOf& literalOf) {
    const ast::NodePtr literal =
        literalOf && tables.areSeveral() && isConstant(value) ? literalOf(value) : nullptr;
    return literal ? literal : value;
}

ast::NodePtr withNearness(const ast::NodePtr& condition, const DistanceTerm& term,
                          const ScannedTables& tables, const LiteralOf& literalOf) {
    const ast::NodeList& arguments = term.call->arguments;
    const std::size_t unitsPosition = term.function->isTest ? 3 : 2;
    const ast::NodePtr units = arguments.size() > unitsPosition
                                   ? arguments[unitsPosition]
                                   : std::make_shared<ast::ContextuallyTypedValueSpecification>();
    if (!term.most || !isRepeatable(term.most) || !isRepeatable(units) || !isRepeatable(arguments[0]) ||
        !isRepeatable(arguments[1])) {
        return condition;
    }
    ast::NodePtr whole = condition;
    for (const std::size_t column : {0U, 1U}) {
        if (!tables.haveGeometry(arguments[column])) {
            continue;
        }
        const ast::NodePtr centre = arguments[1 - column];
        const bool centreIsFirst = column == 1;
        const auto value = std::make_shared<ast::Function>(
            nearness, ast::NodeList{centre, term.most, units, number(term.function->kind),
                                    number(centreIsFirst ? L"1" : L"0")});
        whole = conjunction(whole,
                            std::make_shared<ast::Function>(
                                isNear, ast::NodeList{arguments[column], known(value, tables, literalOf)}));
    }
    return whole;
}

/// A relation and what it is called from the other side. Null for one that has another answer there where the
/// coordinate systems differ: the first operand's counts, but for those of containing.
struct Relation {
    std::wstring_view name;
    const wchar_t* converse;
};
constexpr Relation relations[] = {
    {L"containscentroid", L"CentroidWithin"},
    {L"centroidwithin", L"ContainsCentroid"},
    {L"st_contains", L"ST_Within"},
    {L"contains", L"ST_Within"},
    {L"containsentirely", L"ST_Within"},
    {L"st_within", L"ST_Contains"},
    {L"within", L"ST_Contains"},
    {L"entirelywithin", L"ST_Contains"},
    {L"covers", L"CoveredBy"},
    {L"st_covers", L"CoveredBy"},
    {L"coveredby", L"Covers"},
    {L"st_coveredby", L"Covers"},
    {L"equals", nullptr},
    {L"st_equals", nullptr},
    {L"touches", nullptr},
    {L"st_touches", nullptr},
    {L"crosses", nullptr},
    {L"st_crosses", nullptr},
    {L"overlaps", nullptr},
    {L"st_overlaps", nullptr},
    {L"intersects", nullptr},
    {L"st_intersects", nullptr},
};

std::wstring_view relationName(OperationCode code) {
    switch (code) {
    case OperationCode::Contains: return L"containscentroid";
    case OperationCode::Within: return L"centroidwithin";
    case OperationCode::ContainsEntire: return L"contains";
    case OperationCode::EntirelyWithin: return L"within";
    case OperationCode::ContainsPart:
    case OperationCode::Intersects:
    case OperationCode::PartlyWithin: return L"intersects";
    default: return {};
    }
}

/// What a condition says of two geometries.
struct RelationTerm {
    const Relation* relation;
    ast::NodePtr first, second;
};

std::optional<RelationTerm> relationTermOf(const ast::NodePtr& condition) {
    std::wstring name;
    ast::NodePtr first, second;
    if (const auto* operation = ast::nodeAs<ast::Operation>(condition)) {
        name = relationName(operation->code());
        first = operation->left();
        second = operation->right();
    } else if (const auto* call = ast::nodeAs<ast::Function>(condition);
               call && call->arguments.size() == 2 && !call->over && !call->filter && !call->distinct) {
        name = toLowercase(call->name);
        first = call->arguments[0];
        second = call->arguments[1];
    }
    const auto* relation = std::find_if(std::begin(relations), std::end(relations),
                                        [&name](const Relation& each) { return each.name == name; });
    return relation == std::end(relations) ? std::nullopt
                                           : std::optional(RelationTerm{relation, first, second});
}

/// `a.first = b.second Collate "Within 1 a b"`; null unless both are geometries of tables that have these
/// columns, and of two.
ast::NodePtr betweenTables(const RelationTerm& term, const ScannedTables& tables) {
    const ast::TablePrimary* const first = tables.tableWithOperands(term.first);
    const ast::TablePrimary* const second = tables.tableWithOperands(term.second);
    if (!first || !second || first == second) {
        return nullptr;
    }
    const auto utf8 = [](std::wstring_view text) { return fromSqlString(std::wstring(text)).toStdString(); };
    const std::string collation =
        toCollationName({utf8(term.relation->name), utf8(first->name), utf8(second->name)});
    const auto operand = [](const ast::TablePrimary& table, const std::wstring& name) {
        return std::make_shared<ast::ColumnReference>(table.alias.empty() ? table.name : table.alias, name);
    };
    return std::make_shared<ast::Operation>(
        OperationCode::Equal, operand(*first, firstOperandColumnName()),
        std::make_shared<ast::Operation>(OperationCode::Collate, operand(*second, secondOperandColumnName()),
                                         toSqlString(QString::fromStdString(collation))));
}

/// The same condition with other operands.
ast::NodePtr withOperands(const ast::NodePtr& condition, const ast::NodePtr& first,
                          const ast::NodePtr& second) {
    if (const auto* operation = ast::nodeAs<ast::Operation>(condition)) {
        return std::make_shared<ast::Operation>(operation->code(), first, second);
    }
    auto call = std::make_shared<ast::Function>(static_cast<const ast::Function&>(*condition));
    call->arguments = {first, second};
    return call;
}

ast::NodePtr withRelation(const ast::NodePtr& condition, const RelationTerm& term,
                          const ScannedTables& tables, const LiteralOf& literalOf) {
    if (const ast::NodePtr equality = betweenTables(term, tables)) {
        return equality;
    }
    const bool isOfFirst = tables.haveGeometry(term.first);
    if (isOfFirst == tables.haveGeometry(term.second)) {
        return condition;
    }
    if (isOfFirst) {
        const ast::NodePtr value = known(term.second, tables, literalOf);
        return value == term.second ? condition : withOperands(condition, term.first, value);
    }
    const ast::NodePtr value = known(term.first, tables, literalOf);
    const ast::NodeList operands{term.second, value};
    if (term.relation->converse) {
        return std::make_shared<ast::Function>(term.relation->converse, operands);
    }
    return isRepeatable(value)
               ? conjunction(value == term.first ? condition : withOperands(condition, value, term.second),
                             std::make_shared<ast::Function>(mayMeet, operands))
               : condition;
}

/// Of alternatives SQLite looks each up by itself: only equalities are as good where it does not.
ast::NodePtr withEqualities(const ast::NodePtr& condition, const ScannedTables& tables, int depth = 0) {
    constexpr int deepest = 50; // of more alternatives SQLite looks none up
    const auto* operation = ast::nodeAs<ast::Operation>(condition);
    if (operation && operation->right() && depth < deepest &&
        (operation->code() == OperationCode::Or || operation->code() == OperationCode::And)) {
        const ast::NodePtr left = withEqualities(operation->left(), tables, depth + 1);
        const ast::NodePtr right = withEqualities(operation->right(), tables, depth + 1);
        return left == operation->left() && right == operation->right()
                   ? condition
                   : std::make_shared<ast::Operation>(operation->code(), left, right);
    }
    const auto relation = relationTermOf(condition);
    const ast::NodePtr equality = relation ? betweenTables(*relation, tables) : nullptr;
    return equality ? equality : condition;
}

ast::NodePtr lookedUp(const ast::NodePtr& condition, const ScannedTables& tables,
                      const LiteralOf& literalOf) {
    if (const auto* operation = ast::nodeAs<ast::Operation>(condition);
        operation && operation->code() == OperationCode::Or) {
        return withEqualities(condition, tables);
    }
    if (const auto distance = termOf(condition)) {
        return withNearness(condition, *distance, tables, literalOf);
    }
    const auto relation = relationTermOf(condition);
    return relation ? withRelation(condition, *relation, tables, literalOf) : condition;
}

} // namespace

ScannedTables::ScannedTables(const ast::NodePtr& from, HasHiddenColumns hasHiddenColumns)
    : isQuery_(true), hasHiddenColumns_(std::move(hasHiddenColumns)) {
    forEachSource(from, [this](const ast::Node& source) {
        ++sources_;
        if (const auto* table = ast::nodeAs<ast::TablePrimary>(&source)) {
            tables_.emplace(qualifierOf(&source), table);
        }
    });
}

bool ScannedTables::haveGeometry(const ast::NodePtr& node) const {
    const auto* column = geometryReference(node);
    if (!column) {
        return false;
    }
    return !isQuery_ || (column->qualifier.empty() ? sources_ == 1 && !tables_.empty()
                                                   : tables_.contains(toLowercase(column->qualifier)));
}

const ast::TablePrimary* ScannedTables::tableWithOperands(const ast::NodePtr& node) const {
    const auto* column = geometryReference(node);
    const auto found = column ? tables_.find(toLowercase(column->qualifier)) : tables_.end();
    return found != tables_.end() && hasHiddenColumns_(*found->second) ? found->second : nullptr;
}

std::pair<const ast::ColumnReference*, const ast::ColumnReference*>
relatedGeometries(const ast::NodePtr& condition) {
    if (const auto distance = termOf(condition); distance && distance->most) {
        return {geometryReference(distance->call->arguments[0]),
                geometryReference(distance->call->arguments[1])};
    }
    const auto relation = relationTermOf(condition);
    return relation ? std::pair(geometryReference(relation->first), geometryReference(relation->second))
                    : std::pair<const ast::ColumnReference*, const ast::ColumnReference*>();
}

ast::NodePtr withLookups(const ast::NodePtr& condition, const ScannedTables& tables,
                         const LiteralOf& literalOf) {
    const auto asConjunction = [](const ast::NodePtr& node) {
        const auto* operation = ast::nodeAs<ast::Operation>(node);
        return operation && operation->code() == OperationCode::And && operation->right() ? operation
                                                                                          : nullptr;
    };
    // Long chains of And go deep to the left.
    std::vector<ast::NodePtr> chain{condition};
    while (const auto* operation = asConjunction(chain.back())) {
        chain.push_back(operation->left());
    }
    ast::NodePtr whole = chain.back();
    if (whole) {
        whole = lookedUp(whole, tables, literalOf);
    }
    for (std::size_t i = chain.size() - 1; i-- > 0;) {
        const auto* operation = asConjunction(chain[i]);
        const ast::NodePtr right = withLookups(operation->right(), tables, literalOf);
        const bool isSame = whole == operation->left() && right == operation->right();
        whole = isSame ? chain[i] : conjunction(whole, right);
    }
    return whole;
}

} // namespace orvane::engine
