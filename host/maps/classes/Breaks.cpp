#include "host/maps/classes/Breaks.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::maps {

double roundestWithin(double least, double greatest) {
    if (least <= 0 && greatest >= 0) {
        return 0;
    }
    const double largest = std::max(std::abs(least), std::abs(greatest));
    for (int power = static_cast<int>(std::ceil(std::log10(largest))); power > -300; --power) {
        for (const double part : {1.0, 0.5, 0.2}) {
            // Divided for small ones: ten to a negative power is no exact number.
            const bool isSmall = power < 1;
            const double scale = std::pow(10.0, std::abs(power)) / (isSmall ? part : 1 / part);
            const double count = std::ceil(isSmall ? least * scale : least / scale);
            const double number = isSmall ? count / scale : count * scale;
            if (number >= least && number <= greatest) {
                return number;
            }
        }
        if (std::pow(10.0, power) < largest * 1e-15) {
            break;
        }
    }
    return greatest;
}

namespace {

double valueAt(const std::vector<double>& sorted, double share) {
    const double place = std::clamp(share, 0.0, 1.0) * static_cast<double>(sorted.size() - 1);
    return sorted[static_cast<std::size_t>(std::lround(place))];
}

std::vector<double> quantiles(const std::vector<double>& sorted, int classes) {
    std::vector<double> breaks;
    const double slack = 0.15 / classes; // of the values, that may change sides for a round number
    for (int i = 1; i < classes; ++i) {
        const double share = static_cast<double>(i) / classes;
        breaks.push_back(roundestWithin(valueAt(sorted, share - slack), valueAt(sorted, share + slack)));
    }
    return breaks;
}

/// Where most values are equal, the quantiles of the different ones.
std::vector<double> quantilesOf(const std::vector<double>& sorted, int classes) {
    std::vector<double> breaks = quantiles(sorted, classes);
    if (std::all_of(breaks.begin(), breaks.end(), [&](double number) { return number <= sorted.front(); })) {
        std::vector<double> different = sorted;
        different.erase(std::unique(different.begin(), different.end()), different.end());
        breaks = quantiles(different, classes);
    }
    return breaks;
}

std::vector<double> equalIntervals(const std::vector<double>& sorted, int classes) {
    std::vector<double> breaks;
    const double width = (sorted.back() - sorted.front()) / classes;
    for (int i = 1; i < classes; ++i) {
        const double middle = sorted.front() + i * width;
        breaks.push_back(roundestWithin(middle - 0.1 * width, middle + 0.1 * width));
    }
    return breaks;
}

/// Fisher's exact optimum, in time of classes times the square of the values, so of a thousand of them.
std::vector<double> naturalBreaks(const std::vector<double>& sorted, int classes) {
    constexpr std::size_t most = 1000;
    std::vector<double> values;
    const std::size_t count = std::min(sorted.size(), most);
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back(
            valueAt(sorted, count < 2 ? 0 : static_cast<double>(i) / static_cast<double>(count - 1)));
    }
    std::vector<double> sums(count + 1), squares(count + 1);
    const double centre = values[count / 2]; // against cancellation
    for (std::size_t i = 0; i < count; ++i) {
        const double value = values[i] - centre;
        sums[i + 1] = sums[i] + value;
        squares[i + 1] = squares[i] + value * value;
    }
    const auto deviation = [&](std::size_t from, std::size_t to) { // of the values [from, to)
        const double sum = sums[to] - sums[from];
        return squares[to] - squares[from] - sum * sum / static_cast<double>(to - from);
    };
    const auto numClasses = std::min(static_cast<std::size_t>(classes), count);
    std::vector<double> best(count + 1, std::numeric_limits<double>::infinity());
    std::vector<std::vector<std::size_t>> begins(numClasses, std::vector<std::size_t>(count + 1));
    for (std::size_t to = 1; to <= count; ++to) {
        best[to] = deviation(0, to);
    }
    for (std::size_t k = 1; k < numClasses; ++k) {
        std::vector<double> next(count + 1, std::numeric_limits<double>::infinity());
        for (std::size_t to = k + 1; to <= count; ++to) {
            for (std::size_t from = k; from < to; ++from) {
                const double total = best[from] + deviation(from, to);
                if (total < next[to]) {
                    next[to] = total;
                    begins[k][to] = from;
                }
            }
        }
        best = std::move(next);
    }
    std::vector<double> breaks;
    for (std::size_t k = numClasses - 1, to = count; k > 0; --k) {
        to = begins[k][to];
        const double below = values[to - 1];
        const double gap = values[to] - below;
        breaks.push_back(gap > 0 ? roundestWithin(below + gap / 20, values[to]) : values[to]);
    }
    std::reverse(breaks.begin(), breaks.end());
    return breaks;
}

} // namespace

std::vector<double> classBreaks(const std::vector<double>& sorted, ClassMethod method, int classes) {
    if (sorted.empty() || classes < 2 || sorted.front() == sorted.back()) {
        return {};
    }
    std::vector<double> breaks;
    switch (method) {
    case ClassMethod::Quantiles: breaks = quantilesOf(sorted, classes); break;
    case ClassMethod::EqualIntervals: breaks = equalIntervals(sorted, classes); break;
    case ClassMethod::NaturalBreaks: breaks = naturalBreaks(sorted, classes); break;
    }
    // Where many values are equal, breaks coincide, or nothing is below the first.
    std::erase_if(breaks, [&](double number) { return number <= sorted.front() || number > sorted.back(); });
    std::sort(breaks.begin(), breaks.end());
    breaks.erase(std::unique(breaks.begin(), breaks.end()), breaks.end());
    return breaks;
}

} // namespace orvane::maps
