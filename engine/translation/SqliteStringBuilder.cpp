#include <orvane/engine/SqliteStringBuilder.h>

#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/EngineCache.h>

#include "platform/dp/Selection.h"
#include "platform/sql/lexing/SqlStrings.h"

#include <utility>

// The frame of the builder: options, results, errors, and the assembly of queries.

namespace orvane::engine {

using namespace sql;

SqliteStringBuilder::SqliteStringBuilder(QString collate, const StringBuildContext* context)
    : SqlStringBuilder(context), collate_(std::move(collate)) {}

SqliteStringBuilder::~SqliteStringBuilder() = default;

SqliteStringBuilder& SqliteStringBuilder::setCollate(QString collate) {
    collate_ = std::move(collate);
    return *this;
}

void SqliteStringBuilder::setSelection(const dp::Selection& selection, EngineCache* cache) {
    selectionIds_.clear();
    selectionObject_ = selection.dataObject();
    if (!selectionObject_ || !cache) {
        return;
    }
    for (const dp::FeatureId& id : selection.ids()) {
        selectionIds_.insert(cache->assignIdToInt(id));
    }
}

void SqliteStringBuilder::addError(std::shared_ptr<SqlError> error) {
    errors_.push_back(std::move(error));
}

void SqliteStringBuilder::setError(std::shared_ptr<SqlError> error) {
    errors_.clear();
    addError(std::move(error));
}

void SqliteStringBuilder::addErrors(const std::vector<std::shared_ptr<SqlSyntaxError>>& errors) {
    errors_.insert(errors_.end(), errors.begin(), errors.end());
}

void SqliteStringBuilder::setErrors(const std::vector<std::shared_ptr<SqlSyntaxError>>& errors) {
    errors_.clear();
    addErrors(errors);
}

void SqliteStringBuilder::addTranslateErrors() {
    for (const QString& name : unsupported_) {
        addError(std::make_shared<UnknownFunction>(toSqlString(name)));
    }
}

void SqliteStringBuilder::visit(const ast::QuerySpecification& node) {
    aliasFrames_.emplace_back();
    if (aliasFrames_.size() == 1 && !node.groupBy.empty()) {
        isAggregate_ = true;
    }
    const auto copy = adapted(node);
    SqlStringBuilder::visit(copy ? *copy : node);
    aliasFrames_.pop_back();
}

/// A copy of the query as SQLite has to see it; null when it need not differ. SQLite has no Into. The user
/// sees the outermost result columns, so a geometry or style among them keeps the name it was asked for by;
/// queries further in are seen by the queries around them, which ask for the fixed names.
std::shared_ptr<ast::QuerySpecification> SqliteStringBuilder::adapted(const ast::QuerySpecification& node) {
    const bool outermost = aliasFrames_.size() == 1;
    std::shared_ptr<ast::QuerySpecification> copy;
    const auto change = [&]() -> ast::QuerySpecification& {
        if (!copy) {
            copy = std::make_shared<ast::QuerySpecification>(node);
        }
        return *copy;
    };
    if (const auto* into = ast::nodeAs<ast::IntoClause>(node.into)) {
        const bool isFile = into->target == ast::IntoClause::Target::File;
        (isFile ? intoFile_ : intoTable_) = into->name;
        change().into = nullptr;
    }
    for (std::size_t i = 0; i < node.columns.size(); ++i) {
        if (auto column = withColumnName(node.columns[i], outermost)) {
            change().columns[i] = std::move(column);
        }
    }
    return copy;
}

std::wstring SqliteStringBuilder::constructSelect(std::wstring select, std::wstring quantifier,
                                                  std::wstring columns, std::wstring rest) {
    if (aliasFrames_.size() == 1) {
        insertOffset_ = select.size() + quantifier.size() + columns.size();
    }
    return SqlStringBuilder::constructSelect(std::move(select), std::move(quantifier), std::move(columns),
                                             std::move(rest));
}

std::wstring& SqliteStringBuilder::onFrom(std::wstring& text) {
    fromLength_ = text.size();
    return text;
}

/// Restricts the rows to the selection. The condition before stands in parentheses, so " And " restricts all
/// of it.
std::wstring& SqliteStringBuilder::onWhere(std::wstring& text) {
    const std::size_t fromLength = std::exchange(fromLength_, 0);
    if (aliasFrames_.empty() || selectionIds_.empty()) {
        return text;
    }
    const wchar_t* joiner = text.size() == fromLength ? L" Where " : L" And ";
    for (const std::wstring& alias : aliasFrames_.back()) {
        text += std::exchange(joiner, L" And ");
        appendName(text, alias);
        text += L".rowid In (";
        for (const std::int64_t id : selectionIds_) {
            text += std::to_wstring(id);
            text.push_back(L',');
        }
        text.back() = L')';
    }
    return text;
}

/// A change has a frame of its own: the selection may be its target.
void SqliteStringBuilder::visit(const ast::DeleteStatement& node) {
    aliasFrames_.emplace_back();
    SqlStringBuilder::visit(node);
    aliasFrames_.pop_back();
}

void SqliteStringBuilder::visit(const ast::UpdateStatement& node) {
    aliasFrames_.emplace_back();
    SqlStringBuilder::visit(node);
    aliasFrames_.pop_back();
}

/// SQLite has no `Table t`.
void SqliteStringBuilder::visit(const ast::ExplicitTable& node) {
    ast::QuerySpecification query;
    query.columns.push_back(std::make_shared<ast::DerivedColumn>(std::make_shared<ast::QualifiedAsterisk>()));
    query.from =
        std::make_shared<ast::FromSource>(ast::NodeList{std::make_shared<ast::TablePrimary>(node.name)});
    visit(query);
}

} // namespace orvane::engine
