#include <orvane/engine/SqliteStringBuilder.h>

#include <orvane/engine/ColumnNames.h>

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

/// The fixed name behind a geometry or style name of the dialect; null for any other name.
const std::wstring* fixedName(const std::wstring& name) {
    return isGeometryName(name) ? &geometryColumnName() : isStyleName(name) ? &styleColumnName() : nullptr;
}

const std::wstring& selectionTableName() {
    static const std::wstring name = toSqlString(dp::DataCatalogWithSelection::selectionTableName());
    return name;
}

} // namespace

/// The result column under the name that those around it use; null when it has that already.
ast::NodePtr SqliteStringBuilder::withColumnName(const ast::NodePtr& column, bool outermost) const {
    const auto* derived = ast::nodeAs<ast::DerivedColumn>(column);
    if (!derived) {
        return nullptr;
    }
    if (!outermost) {
        const std::wstring* fixed = fixedName(derived->alias);
        return fixed ? std::make_shared<ast::DerivedColumn>(derived->expression, *fixed) : nullptr;
    }
    const auto* reference = ast::nodeAs<ast::ColumnReference>(derived->expression);
    const bool renamed = reference && derived->alias.empty() && fixedName(reference->name);
    return renamed ? std::make_shared<ast::DerivedColumn>(derived->expression, reference->name) : nullptr;
}

void SqliteStringBuilder::visit(const ast::ColumnReference& node) {
    const bool redirected =
        node.qualifier == selectionTableName() && !aliasFrames_.empty() && !aliasFrames_.back().empty();
    if (redirected) {
        visitCorrectedColumn(ast::ColumnReference(*aliasFrames_.back().begin(), node.name));
    } else {
        visitCorrectedColumn(node);
    }
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
    SqlStringBuilder::visit(node);
    if (needColumns_) {
        columns_.push_back({node.qualifier, node.name});
    }
}

void SqliteStringBuilder::visit(const ast::TablePrimary& node) {
    if (node.name == selectionTableName()) {
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
    if (!aliasFrames_.empty()) { // the target of an Insert stands in no query
        aliasFrames_.back().insert(table.alias);
    }
    isIdUsed_ = true;
    recordTable(table);
    SqlStringBuilder::visit(table);
}

/// The columns of a source that a natural join may match; empty when they are not known.
std::vector<std::wstring> SqliteStringBuilder::columnsOf(const ast::NodePtr& source) const {
    if (const auto* table = ast::nodeAs<ast::TablePrimary>(source)) {
        const bool isSelection = table->name == selectionTableName() && selectionObject_;
        return tableColumns_(isSelection ? toSqlString(selectionObject_->name()) : table->name);
    }
    if (const auto* join = ast::nodeAs<ast::JoinNode>(source)) {
        std::vector<std::wstring> columns = columnsOf(join->left);
        const std::vector<std::wstring> right = columnsOf(join->right);
        if (columns.empty() || right.empty()) {
            return {};
        }
        columns.insert(columns.end(), right.begin(), right.end());
        return columns;
    }
    return {};
}

/// A natural join of tables whose columns are known names the columns that it matches.
void SqliteStringBuilder::visit(const ast::JoinNode& node) {
    const std::vector<std::wstring> left =
        node.natural && tableColumns_ ? columnsOf(node.left) : std::vector<std::wstring>();
    const std::vector<std::wstring> right = left.empty() ? left : columnsOf(node.right);
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
    if (aliasFrames_.size() == 1) {
        primaries_.push_back(dependencies_.back());
    }
}

} // namespace orvane::engine
