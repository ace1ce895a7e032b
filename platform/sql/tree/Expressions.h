#pragma once

#include "platform/sql/tree/Node.h"
#include "platform/sql/tree/OperationCode.h"

#include <optional>
#include <string>

namespace orvane::sql::ast {

/// `name` or `qualifier.name`.
struct ORVANE_PLATFORM_EXPORT ColumnReference : NodeOfKind<NodeKind::ColumnReference> {
    ColumnReference(std::wstring columnQualifier, std::wstring columnName)
        : qualifier(std::move(columnQualifier)), name(std::move(columnName)) {}

    std::wstring qualifier; ///< empty when there is none
    std::wstring name;
};

/// A value whose type only its surroundings tell: Null, or a parameter to be bound.
struct ORVANE_PLATFORM_EXPORT ContextuallyTypedValueSpecification
    : NodeOfKind<NodeKind::ContextuallyTypedValueSpecification> {
    explicit ContextuallyTypedValueSpecification(std::wstring parameterName = {})
        : parameter(std::move(parameterName)) {}

    std::wstring parameter; ///< "?", "?3" or ":name"; empty for Null
};

/// A numeric literal as written: decimal, with or without exponent, or hexadecimal.
struct ORVANE_PLATFORM_EXPORT Number : NodeOfKind<NodeKind::Number> {
    explicit Number(std::wstring digits) : text(std::move(digits)) {}

    std::wstring text;
};

/// A literal in apostrophes. A date, time or timestamp literal is its text.
struct ORVANE_PLATFORM_EXPORT String : NodeOfKind<NodeKind::String> {
    enum class Content { Text, Hexadecimal };

    explicit String(std::wstring text, Content textContent = Content::Text)
        : value(std::move(text)), content(textContent) {}

    std::wstring value; ///< without the apostrophes; an even number of hexadecimal digits for bytes
    Content content;
};

/// True, False or Unknown.
struct ORVANE_PLATFORM_EXPORT TernaryLogicNode : NodeOfKind<NodeKind::TernaryLogicNode> {
    explicit TernaryLogicNode(TernaryLogic::Value truthValue) : value(truthValue) {}

    TernaryLogic::Value value;
};

/// `*`, or `qualifier.*`.
struct ORVANE_PLATFORM_EXPORT QualifiedAsterisk : NodeOfKind<NodeKind::QualifiedAsterisk> {
    explicit QualifiedAsterisk(std::wstring tableQualifier = {}) : qualifier(std::move(tableQualifier)) {}

    std::wstring qualifier;
};

/// `(a, b)`: two or more values compared or assigned together. A row of an Insert may hold one.
struct ORVANE_PLATFORM_EXPORT RowValueExpression : NodeOfKind<NodeKind::RowValueExpression> {
    explicit RowValueExpression(NodeList rowValues) : values(std::move(rowValues)) {}

    NodeList values;
};

/// The values of an In list, the rows of an Insert, or the branches of a Case.
struct ORVANE_PLATFORM_EXPORT RowValueExpressionList : NodeOfKind<NodeKind::RowValueExpressionList> {
    explicit RowValueExpressionList(NodeList listElements) : elements(std::move(listElements)) {}

    NodeList elements;
};

/// The two bounds of a Between, both included.
struct ORVANE_PLATFORM_EXPORT Range : NodeOfKind<NodeKind::Range> {
    Range(NodePtr lowBound, NodePtr highBound) : low(std::move(lowBound)), high(std::move(highBound)) {}

    NodePtr low;
    NodePtr high;
};

/// An operator with its operands. What stands where, for those that are not plain `left operator right`:
/// - unary operators, Exists, Is Null: the operand is left(), right() is null;
/// - Like, Glob: right() is the pattern, escape() the escape character or null;
/// - In: right() is a RowValueExpressionList, a query or an ExplicitTable; Between: right() is a Range;
/// - Cast: left() is the value, name() the type; Collate: left() is the value, name() the collation;
/// - Case: left() is the value to compare, null in the form with conditions; right() is a
/// RowValueExpressionList with
///   one RowValueExpression (when, then) per branch and, when there is an Else, one of a single value at the
///   end.
class ORVANE_PLATFORM_EXPORT Operation : public NodeOfKind<NodeKind::Operation> {
public:
    Operation(OperationCode code, NodePtr left, NodePtr right = nullptr, NodePtr escape = nullptr)
        : code_(code), left_(std::move(left)), right_(std::move(right)), escape_(std::move(escape)) {}
    Operation(OperationCode code, NodePtr left, std::wstring name)
        : code_(code), left_(std::move(left)), name_(std::move(name)) {}

    OperationCode code() const { return code_; }
    const NodePtr& left() const { return left_; }
    const NodePtr& right() const { return right_; }
    bool unary() const { return !right_; }
    const NodePtr& escape() const { return escape_; }
    const std::wstring& name() const { return name_; }

private:
    OperationCode code_;
    NodePtr left_;
    NodePtr right_;
    NodePtr escape_;
    std::wstring name_;
};

/// What a window function looks at: the text between the parentheses after Over.
struct Window {
    enum class BoundKind { UnboundedPreceding, Preceding, CurrentRow, Following, UnboundedFollowing };
    struct Bound {
        BoundKind kind = BoundKind::CurrentRow;
        NodePtr offset; ///< for Preceding and Following
    };
    enum class Unit { Rows, Range, Groups };
    enum class Exclusion { NoOthers, CurrentRow, Group, Ties };
    struct Frame {
        Unit unit = Unit::Range;
        Bound start;
        std::optional<Bound> end; ///< absent: the frame ends at the current row
        Exclusion exclusion = Exclusion::NoOthers;
    };

    NodeList partitionBy;
    NodeList orderBy; ///< SortSpecification
    std::optional<Frame> frame;
};

/// A call of a function.
struct ORVANE_PLATFORM_EXPORT Function : NodeOfKind<NodeKind::Function> {
    /// How the call is written: `f(…)`, a bare word such as rownum or Current_Date, or `Extract(part From
    /// value)`, whose first argument is the part as a String.
    enum Form : int { Call = 0, Bare = 1, Extraction = 2 };

    explicit Function(std::wstring functionName, NodeList functionArguments = {}, int callForm = Call)
        : name(std::move(functionName)), form(callForm), arguments(std::move(functionArguments)) {}

    std::wstring name;
    bool distinct = false;              ///< `f(Distinct x)`
    int form;                           ///< Form
    NodeList arguments;                 ///< a QualifiedAsterisk for `Count(*)`
    NodeList orderBy;                   ///< SortSpecification, of an aggregate of texts: `f(x Order By y)`
    NodePtr filter;                     ///< condition of `Filter (Where …)`, or null
    std::shared_ptr<const Window> over; ///< null unless called as a window function
};

} // namespace orvane::sql::ast
