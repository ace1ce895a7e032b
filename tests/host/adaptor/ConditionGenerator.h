#pragma once

#include <initializer_list>
#include <random>
#include <string>
#include <vector>

namespace orvane::testing {

/// Makes conditions of the dialect over the columns id, i, big, r, s, t, d, f, x and obj of the tables of
/// DifferentialTest: every operator, literals of every type whether they suit the column or not, collations,
/// and nests of Not, And, Or and Xor. The same seed makes the same conditions.
class ConditionGenerator {
public:
    explicit ConditionGenerator(unsigned seed) : random_(seed) {}

    /// `alias` stands before every column.
    std::string condition(const std::string& alias, int depth);
    /// An equality or another comparison of columns of two tables.
    std::string joinCondition(const std::string& left, const std::string& right);
    std::string column(const std::string& alias);

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

private:
    bool chance(int percent) { return below(100) < percent; }
    std::string oneOf(std::initializer_list<const char*> texts);
    std::string literal();
    std::string text();
    std::string pattern();
    std::string maybeCollated(std::string value);
    std::string comparison(const std::string& alias);
    std::string term(const std::string& alias);
    std::string list(bool texts);
    std::string relation(const std::string& alias);

    std::mt19937 random_;
};

} // namespace orvane::testing
