#include <orvane/engine/SqliteStringBuilder.h>

#include <orvane/engine/EngineCache.h>

#include "platform/dp/Selection.h"
#include "platform/sql/lexing/SqlStrings.h"

#include <utility>

// The frame of the builder: options, results, errors, and the restriction to the selection.

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

std::wstring SqliteStringBuilder::constructSelect(std::wstring select, std::wstring quantifier,
                                                  std::wstring columns, std::wstring rest) {
    if (frames_.size() == 1) {
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
    if (frames_.empty()) {
        return text;
    }
    frames_.back().isBehindWhere = true;
    if (selectionIds_.empty()) {
        return text;
    }
    const wchar_t* joiner = text.size() == fromLength ? L" Where " : L" And ";
    for (const std::wstring& alias : frames_.back().selectionAliases) {
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
    frames_.emplace_back();
    SqlStringBuilder::visit(node);
    frames_.pop_back();
}

void SqliteStringBuilder::visit(const ast::UpdateStatement& node) {
    frames_.emplace_back();
    SqlStringBuilder::visit(node);
    frames_.pop_back();
}

} // namespace orvane::engine
