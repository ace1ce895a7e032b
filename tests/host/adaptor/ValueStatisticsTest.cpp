#include "host/adaptor/statistics/ColumnStatistics.h"

#include <gtest/gtest.h>

#include <QString>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane::adaptor {
namespace {

using dp::Comparison;
using dp::ScanValue;
using Kind = TableDeclaration::Kind;

constexpr int tableRows = 100'000;
constexpr int runs = 128;
constexpr int rowsOfRun = 8;

using Random = std::mt19937;

/// A number for each row, and the value that it stands for.
struct Column {
    std::vector<int> ranks;
    std::function<ScanValue(int)> valueOf;
};

Column column(Random& random, const std::function<int(Random&)>& ranks, std::function<ScanValue(int)> valueOf,
              bool isSorted) {
    Column result{std::vector<int>(tableRows), std::move(valueOf)};
    std::generate(result.ranks.begin(), result.ranks.end(), [&] { return ranks(random); });
    if (isSorted) {
        std::sort(result.ranks.begin(), result.ranks.end());
    }
    return result;
}

std::function<int(Random&)> uniform(int values) {
    return [values](Random& random) { return std::uniform_int_distribution(0, values - 1)(random); };
}

/// The k-th value is as frequent as 1 / k to the power of `skew`.
std::function<int(Random&)> zipf(int values, double skew) {
    std::vector<double> weights;
    for (int k = 1; k <= values; ++k) {
        weights.push_back(std::pow(k, -skew));
    }
    return [distribution = std::discrete_distribution<int>(weights.begin(), weights.end())](
               Random& random) mutable { return distribution(random); };
}

std::function<int(Random&)> everyRow() {
    return [next = 0](Random&) mutable { return next++; };
}

ScanValue number(int rank) {
    return std::int64_t{rank} * 7 + 3;
}
ScanValue real(int rank) {
    return rank / 16.0;
}
ScanValue date(int rank) {
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", 1990 + rank / 372, rank / 31 % 12 + 1, rank % 31 + 1);
    return std::string(text);
}
/// Some begin alike; letter case is mixed.
ScanValue town(int rank) {
    constexpr const char* starts[] = {"Ново", "ново", "Старо", "Верхне", "Нижне", "Усть-", "Красно", "Бело"};
    return starts[rank % 8] + std::string(rank % 3 == 0 ? "Градск-" : "камск-") + std::to_string(rank / 8);
}
ScanValue orNull(ScanValue value, bool isNull) {
    return isNull ? ScanValue() : std::move(value);
}

ColumnStatistics sampled(Random& random, const Column& values, const TableDeclaration::Column& declared,
                         int length) {
    ColumnStatistics statistics(declared);
    std::set<int> starts;
    while (starts.size() < std::size_t{runs} * rowsOfRun / static_cast<std::size_t>(length)) {
        starts.insert(uniform(tableRows / length)(random) * length);
    }
    std::int64_t run = 0;
    for (const int start : starts) {
        for (int row = start; row < start + length; ++row) {
            const auto value = values.valueOf(values.ranks[static_cast<std::size_t>(row)]);
            statistics.add(dp::cellOf(value), run);
        }
        ++run;
    }
    statistics.finish(tableRows);
    return statistics;
}

/// How many estimates were within ten times the truth; of no row is as one.
struct Score {
    int asked = 0;
    int good = 0;
    std::string worst;
    double worstRatio = 1;

    void count(double share, double rows, const std::string& what) {
        const double estimate = std::max(1.0, share * tableRows);
        const double truth = std::max(1.0, rows);
        const double ratio = std::max(estimate / truth, truth / estimate);
        ++asked;
        good += ratio <= 10;
        if (ratio > worstRatio) {
            worstRatio = ratio;
            worst = what + ": " + std::to_string(estimate) + " for " + std::to_string(rows);
        }
    }
    void add(const Score& other) {
        asked += other.asked;
        good += other.good;
    }
};

std::string described(const ScanValue& value) {
    const auto cell = dp::cellOf(value);
    return cell.type() == dp::CellType::Text      ? std::string(cell.view())
           : cell.type() == dp::CellType::Integer ? std::to_string(cell.integer())
                                                  : std::to_string(cell.real());
}

/// What there is to find.
struct Truth {
    using Group = std::pair<ScanValue, int>; ///< a value, and how many rows have it

    explicit Truth(const Column& column) {
        std::vector<int> rows(
            1 + static_cast<std::size_t>(*std::max_element(column.ranks.begin(), column.ranks.end())));
        for (const int rank : column.ranks) {
            ++rows[static_cast<std::size_t>(rank)];
        }
        for (std::size_t rank = 0; rank < rows.size(); ++rank) {
            const auto value = column.valueOf(static_cast<int>(rank));
            if (value.index() == 0) {
                nulls += rows[rank];
            } else if (rows[rank] > 0) {
                known.insert(known.end(), static_cast<std::size_t>(rows[rank]),
                             static_cast<int>(groups.size()));
                groups.emplace_back(value, rows[rank]);
            }
        }
        const bool isText = std::holds_alternative<std::string>(groups.front().first);
        declared = {0, isText ? Kind::Text : Kind::Number,
                    isText ? dp::TextCollation::Locale : dp::TextCollation::Binary};
    }

    int nulls = 0;
    std::vector<Group> groups;
    std::vector<int> known; ///< the group of each row, but NULL
    TableDeclaration::Column declared;
};

template<class Item>
const Item& anyOf(const std::vector<Item>& items, Random& random) {
    return items[static_cast<std::size_t>(uniform(static_cast<int>(items.size()))(random))];
}

Score score(const std::vector<ColumnStatistics>& samples, const Truth& truth, Random& random) {
    Score result;
    const auto count = [&](const auto& share, double rows, const std::string& what) {
        for (const auto& statistics : samples) {
            result.count(share(statistics), rows, what);
        }
    };
    const auto& groups = truth.groups;
    count([&](const ColumnStatistics& of) { return of.shareOfNulls(); }, truth.nulls, "Is Null");
    count([&](const ColumnStatistics& of) { return of.distinctValues() / tableRows; },
          static_cast<double>(groups.size()), "distinct values");
    const auto anyKnown = [&]() -> const Truth::Group& {
        return groups[static_cast<std::size_t>(anyOf(truth.known, random))];
    };
    for (int i = 0; i < 20; ++i) {
        // Each row, or each different value, as likely as the other.
        const auto& [value, rows] = i % 2 == 0 ? anyKnown() : anyOf(groups, random);
        const auto cell = dp::cellOf(value);
        count([&](const ColumnStatistics& of) { return of.shareOfValue(cell); }, rows,
              "= " + described(value));
    }
    const bool isText = truth.declared.kind == Kind::Text;
    for (int i = 0; i < (isText ? 6 : 20); ++i) {
        auto low = anyKnown().first;
        auto high = anyKnown().first;
        if (i % 2 == 0 && !isText) { // a narrow one
            const double start = dp::cellOf(low).type() == dp::CellType::Integer
                                     ? static_cast<double>(dp::cellOf(low).integer())
                                     : dp::cellOf(low).real();
            high = start + std::exp(std::uniform_real_distribution(0.0, 10.0)(random));
        } else if (i % 4 == 1 && !isText) { // the rows at one end, and perhaps none
            const auto nearEnd =
                std::min<std::size_t>(groups.size(), 1 + static_cast<std::size_t>(uniform(200)(random)));
            const bool isUpper = i % 8 == 1;
            low = isUpper ? groups[groups.size() - nearEnd].first : ScanValue(-1e300);
            high = isUpper ? ScanValue(1e300) : groups[nearEnd - 1].first;
        }
        const dp::ScanTerm terms[] = {
            {0, Comparison::GreaterOrEqual, truth.declared.collation, {low}},
            {0, i % 3 == 0 ? Comparison::LessOrEqual : Comparison::Less, truth.declared.collation, {high}}};
        std::vector<dp::Condition> conditions;
        for (const auto& term : terms) {
            conditions.push_back(samples.front().conditionOf(term));
        }
        double rows = 0;
        for (const auto& [value, numRows] : groups) {
            rows += conditions[0].accepts(dp::cellOf(value)) && conditions[1].accepts(dp::cellOf(value))
                        ? numRows
                        : 0;
        }
        count([&](const ColumnStatistics& of) { return of.shareOf(conditions); }, rows,
              described(low) + " to " + described(high));
    }
    for (int i = 0; isText && i < 6; ++i) {
        const auto text = QString::fromStdString(std::get<std::string>(anyKnown().first));
        const auto part = i % 2 == 0 ? text.left(2 + i / 2) : text.mid(text.size() / 2);
        const auto pattern =
            ((i % 2 == 0 ? QString() : QStringLiteral("%")) + part.toUpper() + QStringLiteral("%"))
                .toStdString();
        double rows = 0;
        for (const auto& [value, numRows] : groups) {
            const auto candidate = QString::fromStdString(std::get<std::string>(value));
            rows += (i % 2 == 0 ? candidate.startsWith(part, Qt::CaseInsensitive)
                                : candidate.contains(part, Qt::CaseInsensitive))
                        ? numRows
                        : 0;
        }
        count(
            [&](const ColumnStatistics& of) { return of.shareOfPattern(Comparison::Like, pattern.c_str()); },
            rows, "Like " + pattern);
    }
    return result;
}

TEST(Statistics, AreWithinTenTimesTheTruth) {
    Random random(20'240'607); // NOLINT: the same tables in every run
    const auto road = [](int rank) {
        constexpr const char* classes[] = {"motorway", "primary", "residential", "service"};
        return ScanValue(std::string(classes[rank]));
    };
    const auto roads = [n = 0](Random&) mutable { return n++ < 20 ? 0 : 1 + n % 3; };
    const auto shuffled = [n = 0](Random&) mutable {
        return static_cast<int>(std::int64_t{n++} * 77'773 % tableRows);
    };
    const auto normal = [](Random& r) {
        return std::max(0, static_cast<int>(std::normal_distribution(1e6, 2e5)(r)));
    };
    const auto mostlyFirst = [](Random& r) {
        return std::max(0, uniform(tableRows)(r) - tableRows * 99 / 100);
    };
    const auto halfFirst = [](Random& r) { return std::max(0, uniform(2 * tableRows)(r) - tableRows); };
    const auto someNumbers = [](int n) { return orNull(number(n), n % 10 != 0); };
    const auto mostTowns = [](int n) { return orNull(town(n), n == 77); };
    const std::pair<const char*, Column> columns[] = {
        {"a key", column(random, everyRow(), number, false)},
        {"a shuffled key", column(random, shuffled, number, false)},
        {"a text key", column(random, everyRow(), town, false)},
        {"reals", column(random, normal, real, false)},
        {"few numbers", column(random, uniform(5), number, false)},
        {"1000 groups", column(random, uniform(1000), number, false)},
        {"1000 groups, sorted", column(random, uniform(1000), number, true)},
        {"40000 groups", column(random, uniform(40'000), number, false)},
        {"40000 groups, sorted", column(random, uniform(40'000), number, true)},
        {"Zipf", column(random, zipf(100'000, 1), number, false)},
        {"Zipf, sorted", column(random, zipf(100'000, 1), number, true)},
        {"towns", column(random, zipf(20'000, 1.2), town, false)},
        {"towns, sorted", column(random, zipf(20'000, 1.2), town, true)},
        {"few towns", column(random, zipf(300, 0.8), town, false)},
        {"days", column(random, uniform(7400), date, false)},
        {"days, sorted", column(random, uniform(7400), date, true)},
        {"a constant", column(random, uniform(1), town, false)},
        {"a constant and some others", column(random, mostlyFirst, number, false)},
        {"half empty, half unique", column(random, halfFirst, town, false)},
        {"20 rows of a class at the start", column(random, roads, road, false)},
        {"mostly NULL", column(random, everyRow(), someNumbers, false)},
        {"hardly ever NULL", column(random, uniform(3000), mostTowns, false)},
    };
    Score all;
    for (const auto& [name, values] : columns) {
        std::vector<ColumnStatistics> samples;
        const Truth truth(values);
        samples.push_back(sampled(random, values, truth.declared, rowsOfRun));
        samples.push_back(sampled(random, values, truth.declared, 1));
        const auto one = score(samples, truth, random);
        all.add(one);
        EXPECT_GE(one.good, one.asked * 0.8) << name << ", worst " << one.worst;
    }
    EXPECT_GE(all.good, all.asked * 0.97);
}

} // namespace
} // namespace orvane::adaptor
