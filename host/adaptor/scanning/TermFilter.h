#pragma once

#include "platform/dp/Condition.h"
#include <host/adaptor/Export.h>

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

namespace orvane::adaptor {

/// Checks the terms of a scan on the cells of a cursor, before SQLite sees the row: what a dp::Condition
/// leaves out. What passes wrongly is for SQLite to judge.
class ORVANE_ADAPTOR_EXPORT TermFilter {
public:
    /// Takes the terms of the next scan.
    void assign(std::span<const dp::ScanTerm> terms);

    /// Whether no row can match.
    bool matchesNothing() const {
        return std::any_of(tests_.begin(), tests_.end(),
                           [](const Test& test) { return test.condition.acceptsNothing(); });
    }
    bool isEmpty() const { return tests_.empty(); }
    bool accepts(dp::Cursor& cursor) const {
        return std::all_of(tests_.begin(), tests_.end(), [&cursor](const Test& test) {
            return test.condition.accepts(cursor.cell(test.attribute));
        });
    }

private:
    struct Test {
        int attribute = 0;
        dp::Condition condition;
    };

    std::vector<Test> tests_;
    std::shared_ptr<const dp::TextComparison> locale_; ///< null until texts are compared under Locale
};

} // namespace orvane::adaptor
