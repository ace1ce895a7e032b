#include <orvane/engine/SqliteStringBuilder.h>

#include <orvane/engine/ColumnNames.h>

#include "engine/translation/FixedColumns.h"
#include "platform/dp/DataCatalogWithSelection.h"
#include "platform/dp/DataObject.h"
#include "platform/sql/lexing/SqlStrings.h"

#include <QUuid>

#include <algorithm>
#include <utility>

// Columns and tables: geometry, style, row numbers, and the selection as a table.

namespace orvane::engine {

using namespace sql;

namespace {

bool isGeometryName(const std::wstring& name) {
    if (name.size() != 3 && name.size() != 6) {
        return false;
    }
    const std::wstring lowercase = toLowercase(name);
    return lowercase == L"obj" || lowercase == L"object";
}

bool isStyleName(const std::wstring& name) {
    if (name.size() != 5 && name.size() != 14) {
        return false;
    }
    const std::wstring lowercase = toLowercase(name);
    return lowercase == L"style" || lowercase == L"tr$$_rendition";
}

/// How deep the columns of a query are looked for in the queries that it selects all columns from.
constexpr int deepestNamedQuery = 20;

const std::wstring& selectionTableName() {
    static const std::wstring name = toSqlString(dp::DataCatalogWithSelection::selectionTableName());
    return name;
}

} // namespace

const std::wstring* fixedColumnName(const std::wstring& name) {
    return isGeometryName(name) ? &geometryColumnName() : isStyleName(name) ? &styleColumnName() : nullptr;
}

/// The name as it is declared, where that differs in letter case only.
const std::wstring& SqliteStringBuilder::spelling(const std::wstring& key, const std::wstring& name) const {
    const auto found = spellings_.empty() ? spellings_.end() : spellings_.find(toLowercase(key));
    const bool isOther = found != spellings_.end() &&
                         std::find(found->second.begin(), found->second.end(), name) == found->second.end();
    return isOther ? found->second.front() : name;
}

void SqliteStringBuilder::appendName(std::wstring& text, const std::wstring& name, NameUse use) const {
    SqlStringBuilder::appendName(text, use == NameUse::Call ? name : spelling(name, name), use);
}

/// The alias of the selection for columns that are qualified by its name: that of the nearest query that has
/// it in From. Null for other qualifiers.
const std::wstring* SqliteStringBuilder::selectionAlias(const std::wstring& qualifier) const {
    if (qualifier != selectionTableName()) {
        return nullptr;
    }
    const auto frame = std::find_if(frames_.rbegin(), frames_.rend(),
                                    [](const Frame& each) { return !each.selectionAliases.empty(); });
    return frame != frames_.rend() ? &*frame->selectionAliases.begin() : nullptr;
}

void SqliteStringBuilder::visit(const ast::ColumnReference& node) {
    if (const std::wstring* alias = selectionAlias(node.qualifier)) {
        return visitCorrectedColumn(ast::ColumnReference(*alias, node.name));
    }
    if (const ast::TablePrimary* call = callOfColumn(node)) {
        return visitImpl(ast::ColumnReference(call->alias, L"value"));
    }
    if (const ast::NodePtr value = resultColumnNamed(node)) {
        frames_.back().isBehindWhere = false; // the value itself is the table's
        std::wstring text = renderValue(value);
        frames_.back().isBehindWhere = true;
        const bool isOperation = value->kind == ast::NodeKind::Operation;
        return push(isOperation ? L'(' + text + L')' : std::move(text));
    }
    visitCorrectedColumn(node);
}

/// The value of the result column that a geometry or style name stands for within Group By, Having or Order
/// By; null when there is none of that name. SQLite knows the result column under another one.
ast::NodePtr SqliteStringBuilder::resultColumnNamed(const ast::ColumnReference& node) const {
    const bool isName = !frames_.empty() && frames_.back().isBehindWhere && frames_.back().columns &&
                        node.qualifier.empty() && fixedColumnName(node.name);
    for (std::size_t i = 0; isName && i < frames_.back().columns->size(); ++i) {
        const auto* column = ast::nodeAs<ast::DerivedColumn>((*frames_.back().columns)[i]);
        if (column && toLowercase(column->alias) == toLowercase(node.name)) {
            return column->expression;
        }
    }
    return nullptr;
}

void SqliteStringBuilder::visit(const ast::QualifiedAsterisk& node) {
    const std::wstring* alias = selectionAlias(node.qualifier);
    SqlStringBuilder::visit(alias ? ast::QualifiedAsterisk(*alias) : node);
}

void SqliteStringBuilder::visitCorrectedColumn(const ast::ColumnReference& node) {
    if (visitGeo(node) || visitStyle(node)) {
        return;
    }
    isIdUsed_ = isIdUsed_ || toLowercase(node.name) == L"rowid";
    visitImpl(node);
}

bool SqliteStringBuilder::visitGeo(const ast::ColumnReference& node) {
    if (!isGeometryName(node.name)) {
        return false;
    }
    visitImpl(ast::ColumnReference(node.qualifier, geometryColumnName()));
    return true;
}

bool SqliteStringBuilder::visitStyle(const ast::ColumnReference& node) {
    if (!isStyleName(node.name)) {
        return false;
    }
    visitImpl(ast::ColumnReference(node.qualifier, styleColumnName()));
    return true;
}

void SqliteStringBuilder::visitImpl(const ast::ColumnReference& node) {
    const std::wstring key = spellings_.empty() ? std::wstring() : node.qualifier + L'.' + node.name;
    SqlStringBuilder::visit(ast::ColumnReference(node.qualifier, spelling(key, node.name)));
    if (needColumns_ && node.name != originColumnName() && node.name != distanceColumnName()) {
        const bool isOperand =
            node.name == firstOperandColumnName() || node.name == secondOperandColumnName();
        columns_.push_back({node.qualifier, isOperand ? geometryColumnName() : node.name});
    }
}

void SqliteStringBuilder::appendNames(std::wstring& text, const ast::NodeList& columns) {
    isNaming_ = true;
    SqlStringBuilder::appendNames(text, columns);
    isNaming_ = false;
}

/// A function that gives a table is none that anybody depends on.
void SqliteStringBuilder::visitCall(const ast::TablePrimary& node) {
    ast::TablePrimary call = node;
    call.columnName.clear(); // SQLite has no names for the columns of a table
    SqlStringBuilder::visit(call);
    if (!frames_.empty()) {
        call.alias = node.alias.empty() ? node.name : node.alias;
        call.columnName = node.columnName.empty() ? call.alias : node.columnName;
        frames_.back().calls.push_back(std::move(call));
    }
}

/// The function whose only column a reference means: by the name that is given to it, or else by that of the
/// table. Null for other columns.
const ast::TablePrimary* SqliteStringBuilder::callOfColumn(const ast::ColumnReference& node) const {
    const auto isMeant = [&node](const ast::TablePrimary& call) {
        return toLowercase(call.columnName) == toLowercase(node.name) &&
               (node.qualifier.empty() || toLowercase(call.alias) == toLowercase(node.qualifier));
    };
    for (auto frame = frames_.rbegin(); !isNaming_ && frame != frames_.rend(); ++frame) {
        const auto call = std::find_if(frame->calls.begin(), frame->calls.end(), isMeant);
        if (call != frame->calls.end()) {
            return &*call;
        }
    }
    return nullptr;
}

void SqliteStringBuilder::visit(const ast::TablePrimary& node) {
    if (node.isCall) {
        visitCall(node);
    } else if (node.name == selectionTableName()) {
        visitSelectionTable(node);
    } else {
        recordTable(node);
        SqlStringBuilder::visit(node);
    }
}

void SqliteStringBuilder::visitSelectionTable(const ast::TablePrimary& node) {
    ast::TablePrimary table(node.name, node.alias);
    if (table.alias.empty()) {
        table.alias = L'_' + toSqlString(QUuid::createUuid().toString(QUuid::Id128));
    }
    if (selectionObject_ && !selectionIds_.empty()) {
        table.name = toSqlString(selectionObject_->name());
    } else {
        addError(std::make_shared<SelectionTableIsAbsent>());
    }
    if (!frames_.empty()) { // the target of an Insert stands in no query
        frames_.back().selectionAliases.insert(table.alias);
    }
    isIdUsed_ = true;
    recordTable(table);
    SqlStringBuilder::visit(table);
}

/// The columns of a source that a natural join may match; empty when they are not known.
std::vector<std::wstring> SqliteStringBuilder::columnsOf(const ast::NodePtr& source, int depth) {
    if (depth > deepestNamedQuery) {
        return {}; // a query that refers to itself
    }
    if (const auto* table = ast::nodeAs<ast::TablePrimary>(source)) {
        if (const ast::CommonTable* named = namedQuery(table->name)) {
            return namedColumns(named->columns, named->query, depth);
        }
        const bool isSelection = table->name == selectionTableName() && selectionObject_;
        return tableColumns_(isSelection ? toSqlString(selectionObject_->name())
                                         : spelling(table->name, table->name));
    }
    if (const auto* join = ast::nodeAs<ast::JoinNode>(source)) {
        std::vector<std::wstring> columns = columnsOf(join->left, depth);
        const std::vector<std::wstring> right = columnsOf(join->right, depth);
        if (columns.empty() || right.empty()) {
            return {};
        }
        columns.insert(columns.end(), right.begin(), right.end());
        return columns;
    }
    const auto* derived = ast::nodeAs<ast::DerivedTable>(source);
    return derived ? namedColumns(derived->columns, derived->query, depth) : std::vector<std::wstring>();
}

/// The columns of a query under the names given or, without any, its own. Geometry and style are left out;
/// empty when a column has no name that is known.
std::vector<std::wstring> SqliteStringBuilder::namedColumns(const ast::NodeList& names,
                                                            const ast::NodePtr& query, int depth) {
    const std::size_t scopes = namedQueries_.size();
    const ast::QuerySpecification* select = ast::firstSelect(query.get());
    for (const ast::Node* node = query.get(); node;) {
        namedQueries_.push_back(&static_cast<const ast::QueryExpression*>(node)->with);
        const auto* operation = ast::nodeAs<ast::QueryOperation>(node);
        node = operation ? operation->left.get() : nullptr;
    }
    std::vector<std::wstring> columns = resultColumns(names.empty() && select ? select->columns : names,
                                                      select ? ast::onlySource(*select) : nullptr, depth);
    namedQueries_.resize(scopes);
    return columns;
}

std::vector<std::wstring> SqliteStringBuilder::resultColumns(const ast::NodeList& nodes,
                                                             const ast::NodePtr& source, int depth) {
    std::vector<std::wstring> columns;
    for (const ast::NodePtr& node : nodes) {
        const auto* column = ast::nodeAs<ast::DerivedColumn>(node);
        if (column && ast::nodeAs<ast::QualifiedAsterisk>(column->expression)) {
            const std::vector<std::wstring> all = columnsOf(source, depth + 1);
            if (all.empty()) {
                return {};
            }
            columns.insert(columns.end(), all.begin(), all.end());
            continue;
        }
        const auto* reference = ast::nodeAs<ast::ColumnReference>(column ? column->expression : node);
        const std::wstring name = column && !column->alias.empty() ? column->alias
                                  : reference                      ? reference->name
                                                                   : std::wstring();
        if (name.empty()) {
            return {};
        }
        if (!fixedColumnName(name)) {
            columns.push_back(name);
        }
    }
    return columns;
}

/// The query that With gives a name that can be used now; null when there is none.
const ast::CommonTable* SqliteStringBuilder::namedQuery(const std::wstring& name) const {
    for (auto scope = namedQueries_.rbegin(); scope != namedQueries_.rend(); ++scope) {
        for (const ast::CommonTable& table : **scope) {
            if (toLowercase(table.name) == toLowercase(name)) {
                return &table;
            }
        }
    }
    return nullptr;
}

/// A natural join of tables whose columns are known names the columns that it matches.
void SqliteStringBuilder::visit(const ast::JoinNode& node) {
    const std::vector<std::wstring> left =
        node.natural && tableColumns_ ? columnsOf(node.left, 0) : std::vector<std::wstring>();
    const std::vector<std::wstring> right = left.empty() ? left : columnsOf(node.right, 0);
    if (right.empty()) {
        return SqlStringBuilder::visit(node);
    }
    ast::NodeList common;
    for (const std::wstring& name : right) {
        const bool isCommon = std::any_of(left.begin(), left.end(), [&name](const std::wstring& other) {
            return toLowercase(other) == toLowercase(name);
        });
        if (isCommon) {
            common.push_back(std::make_shared<ast::ColumnReference>(std::wstring(), name));
        }
    }
    const auto matching =
        common.empty() ? nullptr : std::make_shared<ast::NamedColumnsJoin>(std::move(common));
    SqlStringBuilder::visit(ast::JoinNode(node.join, false, node.left, node.right, matching));
}

void SqliteStringBuilder::recordTable(const ast::TablePrimary& node) {
    if (!needDependencies_) {
        return;
    }
    dependencies_.push_back({node.name, node.alias});
    if (frames_.size() == 1) {
        primaries_.push_back(dependencies_.back());
    }
}

} // namespace orvane::engine
