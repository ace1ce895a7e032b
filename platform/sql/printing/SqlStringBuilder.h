#pragma once

#include "platform/Export.h"
#include "platform/sql/tree/NodeVisitor.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>

namespace orvane::sql {

/// What a builder asks of its surroundings.
class StringBuildContext {
public:
    virtual ~StringBuildContext() = default;

    /// Whether a name is to be quoted although it is a plain one and no keyword.
    virtual bool isReservedName(const std::wstring& name) const = 0;
};

/// Renders a tree as the text of the dialect. Derived builders override what another tongue writes otherwise.
///
/// Rendering a node leaves its text as the new top of the result stack. The text is also valid SQLite
/// wherever the operators are: names that either language reserves are quoted, and operands are put in
/// parentheses unless both languages agree on what binds tighter. One builder serves one thread.
class ORVANE_PLATFORM_EXPORT SqlStringBuilder : public ast::NodeVisitor {
public:
    /// The context, not owned, may be null.
    explicit SqlStringBuilder(const StringBuildContext* context) : context_(context) {}
    ~SqlStringBuilder() override;
    SqlStringBuilder(const SqlStringBuilder&) = delete;
    SqlStringBuilder& operator=(const SqlStringBuilder&) = delete;

    std::wstring buildString(const ast::Node& root);

    void visit(const ast::ColumnReference& node) override;
    void visit(const ast::ContextuallyTypedValueSpecification& node) override;
    void visit(const ast::DeleteStatement& node) override;
    void visit(const ast::DerivedColumn& node) override;
    void visit(const ast::DerivedTable& node) override;
    void visit(const ast::ExplicitTable& node) override;
    void visit(const ast::FromSource& node) override;
    void visit(const ast::Function& node) override;
    void visit(const ast::InsertStatement& node) override;
    void visit(const ast::IntoClause& node) override;
    void visit(const ast::JoinCondition& node) override;
    void visit(const ast::JoinNode& node) override;
    void visit(const ast::NamedColumnsJoin& node) override;
    void visit(const ast::Number& node) override;
    void visit(const ast::Operation& node) override;
    void visit(const ast::QualifiedAsterisk& node) override;
    void visit(const ast::QueryOperation& node) override;
    void visit(const ast::QuerySpecification& node) override;
    void visit(const ast::Range& node) override;
    void visit(const ast::RowValueExpression& node) override;
    void visit(const ast::RowValueExpressionList& node) override;
    void visit(const ast::SetClause& node) override;
    void visit(const ast::SortSpecification& node) override;
    void visit(const ast::String& node) override;
    void visit(const ast::TablePrimary& node) override;
    void visit(const ast::TernaryLogicNode& node) override;
    void visit(const ast::UpdateStatement& node) override;
    /// Renders nothing, so that a faulty tree gives a faulty text rather than a crash.
    void faultAction() override;
    void visit(const ast::SessionStatement& node) override;

    /// The operator between (or before, or after) its operands, without blanks.
    virtual std::wstring operationToString(OperationCode code) const;
    virtual std::wstring ternaryToString(TernaryLogic::Value value);

    /// Called with the text of a statement from its From part on, just after From was appended; for Update
    /// and Delete with the text so far, just before Where. Returns the argument.
    virtual std::wstring& onFrom(std::wstring& text);
    /// The same, after the Where part was appended or left out.
    virtual std::wstring& onWhere(std::wstring& text);
    /// Called with the result columns after Into was appended or left out.
    virtual std::wstring& onInto(std::wstring& text);
    virtual std::wstring& onGroupBy(std::wstring& text);
    virtual std::wstring& onOrderBy(std::wstring& text);
    /// Joins "Select" (after With, if there is one), the quantifier with its blank, the result columns with
    /// theirs and Into, and everything from " From" on.
    virtual std::wstring constructSelect(std::wstring select, std::wstring quantifier, std::wstring columns,
                                         std::wstring rest);

protected:
    using TextFunction = std::function<std::wstring&(std::wstring&)>;

    /// Renders an operation as visit() does, passing the text of its left operand through `collated`; of a
    /// row value, each element. An operand under a Collate of its own is left alone: what the user states
    /// wins.
    void processOperation(const ast::Operation& node, const TextFunction& collated);

    void push(std::wstring text) { stack_.push_back(std::move(text)); }
    std::wstring pop();
    /// The text of a node.
    std::wstring render(const ast::NodePtr& node);

    enum class NameUse {
        Plain,
        Call,  ///< before "(": words such as Mod are free there
        Column ///< of a column without qualifier: words that stand for calls are not free
    };
    /// A name, quoted when it has to be.
    virtual void appendName(std::wstring& text, const std::wstring& name, NameUse use = NameUse::Plain) const;
    void appendList(std::wstring& text, const ast::NodeList& nodes);
    /// Columns that are named rather than asked for their values.
    virtual void appendNames(std::wstring& text, const ast::NodeList& columns) { appendList(text, columns); }
    /// A node as a value: a query in parentheses.
    std::wstring renderValue(const ast::NodePtr& node);

    /// `With … `, or nothing.
    virtual std::wstring renderWith(const ast::QueryExpression& query);
    /// What stands behind Where or On.
    virtual std::wstring renderCondition(const ast::NodePtr& condition);
    /// A term of Group By, Order By or Partition By, without direction.
    virtual std::wstring renderKey(const ast::NodePtr& key);
    /// How far a bound of a frame is away.
    virtual std::wstring renderBound(const ast::NodePtr& offset);
    /// Order By, limit and offset.
    virtual void appendResultClauses(std::wstring& text, const ast::QueryExpression& query);
    virtual void appendLimit(std::wstring& text, const ast::QueryExpression& query);
    /// Whether an operand of a set operator is to be enclosed.
    virtual bool needsEnclosing(const ast::NodePtr& query, const ast::QueryOperation& parent) const;
    /// A query as an operand that keeps its own clauses.
    virtual std::wstring renderEnclosed(const ast::NodePtr& query);

private:
    std::wstring renderOperand(const ast::NodePtr& node, OperationCode parent, bool isLeft);
    std::wstring renderCollated(const ast::Operation& node, const TextFunction& collated);
    void renderOperation(const ast::Operation& node, const TextFunction& collated);
    void renderCase(const ast::Operation& node, const TextFunction& collated);
    void appendInOperand(std::wstring& text, const ast::Operation& node);
    void appendWindow(std::wstring& text, const ast::Window& window);
    void appendBound(std::wstring& text, const ast::Window::Bound& bound);
    void appendAlias(std::wstring& text, const std::wstring& alias) const;
    std::wstring renderTarget(const ast::NodePtr& table);
    /// The terms, the words given before the first of them.
    void appendKeys(std::wstring& text, const wchar_t* words, const ast::NodeList& keys);
    void appendWhere(std::wstring& text, const ast::NodePtr& condition);
    std::wstring renderSetOperand(const ast::NodePtr& query, const ast::QueryOperation& parent);

    const StringBuildContext* context_;
    std::deque<std::wstring> stack_;
    bool inTarget_ = false; ///< the table being rendered is one that is changed: its alias needs As
};

} // namespace orvane::sql
