#include "host/adaptor/statistics/ColumnStatistics.h"

#include <gtest/gtest.h>

#include <QString>

#include <functional>
#include <map>
#include <random>
#include <set>

namespace orvane::adaptor {
namespace {

using dp::Comparison;
using dp::ScanValue;
using Kind = TableDeclaration::Kind;

constexpr int tableRows = 100'000;
constexpr int runs = 128;
constexpr int rowsOfRun = 8;

using Random = std::mt19937;
using Column = std::vector<ScanValue>;

/// The values of a column with a rank for each: how often a rank occurs is decided by `ranks`.
Column column(Random& random, const std::function<int(Random&)>& ranks,
              const std::function<ScanValue(int)>& valueOf, bool isSorted) {
    std::vector<int> drawn(tableRows);
    std::generate(drawn.begin(), drawn.end(), [&] { return ranks(random); });
    if (isSorted) {
        std::sort(drawn.begin(), drawn.end());
    }
    Column values;
    for (const int rank : drawn) {
        values.push_back(valueOf(rank));
    }
    return values;
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

TableDeclaration::Column declared(const Column& values) {
    const bool isText = std::any_of(values.begin(), values.end(), [](const ScanValue& v) {
        return std::holds_alternative<std::string>(v);
    });
    return {0, isText ? Kind::Text : Kind::Number,
            isText ? dp::TextCollation::Locale : dp::TextCollation::Binary};
}

ColumnStatistics sampled(Random& random, const Column& values, int length) {
    ColumnStatistics statistics(declared(values));
    std::set<int> starts;
    while (starts.size() < std::size_t{runs} * rowsOfRun / static_cast<std::size_t>(length)) {
        starts.insert(uniform(tableRows / length)(random) * length);
    }
    std::int64_t run = 0;
    for (const int start : starts) {
        for (int row = start; row < start + length; ++row) {
            statistics.add(dp::cellOf(values[static_cast<std::size_t>(row)]), run);
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
    explicit Truth(const Column& column) {
        std::map<ScanValue, int> counted;
        for (const auto& value : column) {
            ++counted[value];
        }
        nulls = counted[ScanValue()];
        counted.erase(ScanValue());
        counts.assign(counted.begin(), counted.end());
        std::copy_if(column.begin(), column.end(), std::back_inserter(known),
                     [](const ScanValue& value) { return value.index() != 0; });
    }

    int nulls;
    std::vector<std::pair<ScanValue, int>> counts; ///< different values with their rows
    Column known;                                  ///< all but NULL
};

template<class Item>
const Item& anyOf(const std::vector<Item>& items, Random& random) {
    return items[static_cast<std::size_t>(uniform(static_cast<int>(items.size()))(random))];
}

Score score(const std::vector<ColumnStatistics>& samples, const TableDeclaration::Column& column,
            const Truth& truth, Random& random) {
    Score result;
    const auto count = [&](const auto& share, double rows, const std::string& what) {
        for (const auto& statistics : samples) {
            result.count(share(statistics), rows, what);
        }
    };
    const auto& counts = truth.counts;
    count([&](const ColumnStatistics& of) { return of.shareOfNulls(); }, truth.nulls, "Is Null");
    count([&](const ColumnStatistics& of) { return of.distinctValues() / tableRows; },
          static_cast<double>(counts.size()), "distinct values");
    const auto anyKnown = [&] { return anyOf(truth.known, random); };
    for (int i = 0; i < 20; ++i) {
        // Each row, or each different value, as likely as the other.
        const auto value = i % 2 == 0 ? anyKnown() : anyOf(counts, random).first;
        const auto found = std::lower_bound(counts.begin(), counts.end(), std::pair(value, 0));
        count([&](const ColumnStatistics& of) { return of.shareOfValue(dp::cellOf(value)); }, found->second,
              "= " + described(value));
    }
    const bool isText = column.kind == Kind::Text;
    for (int i = 0; i < (isText ? 6 : 20); ++i) {
        auto low = anyKnown();
        auto high = anyKnown();
        if (i % 2 == 0 && !isText) { // a narrow one
            const double start = dp::cellOf(low).type() == dp::CellType::Integer
                                     ? static_cast<double>(dp::cellOf(low).integer())
                                     : dp::cellOf(low).real();
            high = start + std::exp(std::uniform_real_distribution(0.0, 10.0)(random));
        }
        const dp::ScanTerm terms[] = {
            {0, Comparison::GreaterOrEqual, column.collation, {low}},
            {0, i % 3 == 0 ? Comparison::LessOrEqual : Comparison::Less, column.collation, {high}}};
        std::vector<dp::Condition> conditions;
        for (const auto& term : terms) {
            conditions.push_back(samples.front().conditionOf(term));
        }
        double rows = 0;
        for (const auto& [value, numRows] : counts) {
            rows += conditions[0].accepts(dp::cellOf(value)) && conditions[1].accepts(dp::cellOf(value))
                        ? numRows
                        : 0;
        }
        count([&](const ColumnStatistics& of) { return of.shareOf(conditions); }, rows,
              described(low) + " to " + described(high));
    }
    for (int i = 0; isText && i < 6; ++i) {
        const auto text = QString::fromStdString(std::get<std::string>(anyKnown()));
        const auto part = i % 2 == 0 ? text.left(2 + i / 2) : text.mid(text.size() / 2);
        const auto pattern =
            ((i % 2 == 0 ? QString() : QStringLiteral("%")) + part.toUpper() + QStringLiteral("%"))
                .toStdString();
        double rows = 0;
        for (const auto& [value, numRows] : counts) {
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
        return ScanValue(std::string(classes[std::min(rank / 20, 1) + rank % 3 * std::min(rank / 20, 1)]));
    };
    const std::pair<const char*, Column> columns[] = {
        {"a key", column(random, everyRow(), number, false)},
        {"a shuffled key", column(
                               random,
                               [](Random&) {
                                   static int n = 0;
                                   return static_cast<int>(std::int64_t{n++} * 77'773 % tableRows);
                               },
                               number, false)},
        {"a text key", column(random, everyRow(), town, false)},
        {"reals",
         column(
             random, [](Random& r) { return static_cast<int>(std::normal_distribution(0.0, 1e6)(r)); }, real,
             false)},
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
        {"a constant and some others",
         column(
             random, [](Random& r) { return std::max(0, uniform(tableRows)(r) - tableRows * 99 / 100); },
             number, false)},
        {"half empty, half unique",
         column(
             random, [](Random& r) { return std::max(0, uniform(2 * tableRows)(r) - tableRows); }, town,
             false)},
        {"20 rows of a class at the start", column(random, everyRow(), road, false)},
        {"mostly NULL", column(
                            random, everyRow(), [](int n) { return orNull(number(n), n % 10 != 0); }, false)},
        {"hardly ever NULL",
         column(
             random, uniform(100'000), [](int n) { return orNull(town(n % 3000), n % 3000 == 77); }, false)},
    };
    Score all;
    for (const auto& [name, values] : columns) {
        std::vector<ColumnStatistics> samples;
        samples.push_back(sampled(random, values, rowsOfRun));
        samples.push_back(sampled(random, values, 1));
        const auto one = score(samples, declared(values), Truth(values), random);
        all.add(one);
        EXPECT_GE(one.good, one.asked * 0.8) << name << ", worst " << one.worst;
    }
    EXPECT_GE(all.good, all.asked * 0.97);
}

} // namespace
} // namespace orvane::adaptor
