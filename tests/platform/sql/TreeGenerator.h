#pragma once

#include "platform/sql/tree/NodeVisitor.h"

#include <random>

namespace orvane::tests {

/// Makes statements at random, of every kind of node and with awkward names, but only such as some text
/// means: set operators group to the left, numbers have no sign, lists are not empty where the language wants
/// them so.
class TreeGenerator {
public:
    explicit TreeGenerator(unsigned seed) : random_(seed) {}

    sql::ast::NodePtr statement();

private:
    using NodePtr = sql::ast::NodePtr;
    using NodeList = sql::ast::NodeList;

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    template<class Values>
    const auto& pick(const Values& values) {
        return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
    }
    bool chance(int percent) { return below(100) < percent; }
    std::wstring name();
    std::wstring maybeName() { return chance(50) ? name() : std::wstring(); }
    NodePtr column();
    NodeList columns();
    NodePtr expression(int depth);
    NodeList expressions(int depth, int fewest, int most);
    NodePtr operation(int depth);
    NodePtr comparison(int depth);
    NodePtr caseOf(int depth);
    NodePtr function(int depth);
    std::shared_ptr<sql::ast::Window> window(int depth);
    NodePtr rowValue(int depth) {
        return std::make_shared<sql::ast::RowValueExpression>(expressions(depth, 2, 3));
    }
    NodePtr query(int depth);
    NodePtr select(int depth);
    NodePtr setOperation(int depth);
    void finish(sql::ast::QueryExpression& query, int depth);
    NodePtr source(int depth);
    NodePtr sortTerm(int depth);
    NodePtr insert();
    NodePtr update();

    std::mt19937 random_;
};

} // namespace orvane::tests
