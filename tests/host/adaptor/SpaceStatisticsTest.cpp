// What statistics of space say of tables of many shapes, against what is counted.

#include "host/adaptor/statistics/SpaceStatistics.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace orvane::adaptor {

namespace {

using geometry::Envelope;
using Match = SpaceStatistics::Match;
using Envelopes = std::vector<Envelope>;

class SpaceStatisticsTest : public testing::Test {
protected:
    double number(double least, double most) { return std::uniform_real_distribution(least, most)(random_); }
    static Envelope box(double x, double y, double width, double height) {
        return {x - width / 2, y - height / 2, x + width / 2, y + height / 2};
    }

    /// Layers as there are, in a world of 1000 by 1000.
    Envelope feature(int kind, int row) {
        const auto side = [this](double typical) { return typical * std::exp(number(-2, 2)); };
        switch (kind) {
        case 0: return box(number(0, 1000), number(0, 1000), 0, 0);              // places
        case 1: return box((row % 70) * 14.0, (row / 70) * 14.0, 14, 14);        // parcels
        case 2: return box(number(0, 1000), number(0, 1000), side(20), side(1)); // roads
        case 3: {                                                                // towns
            const double x = (row % 40) * 25.0, y = ((row * 7) % 40) * 25.0;
            return box(x + number(-1, 1), y + number(-1, 1), 0, 0);
        }
        case 4: return row % 100 == 0 ? box(500, 500, 900, 900) : box(number(0, 100), 3, 1, 1); // skewed
        case 5: return box(7, 7, 0, 0);                                                         // one place
        case 6: return box(number(0, 1000), 500, 0, 0);                                         // a line
        default: return box(number(300, 400), number(300, 900), side(60), side(60));            // districts
        }
    }
    static constexpr int kinds = 8;

    Envelopes layer(int kind, int rows) {
        Envelopes envelopes;
        for (int row = 0; row < rows; ++row) {
            envelopes.push_back(feature(kind, row));
        }
        return envelopes;
    }

    /// Of a third of the rows.
    SpaceStatistics statistics(Envelopes layer) {
        const auto rows = static_cast<double>(layer.size());
        std::shuffle(layer.begin(), layer.end(), random_);
        layer.resize(std::max<std::size_t>(1, layer.size() / 3));
        return {layer, rows};
    }

    static bool matches(const Envelope& a, const Envelope& b, Match match) {
        const auto holdsCentre = [](const Envelope& outer, const Envelope& inner) {
            const double x = (inner.minX + inner.maxX) / 2, y = (inner.minY + inner.maxY) / 2;
            return outer.intersects({x, y, x, y});
        };
        switch (match) {
        case Match::FirstWithin: return b.contains(a);
        case Match::SecondWithin: return a.contains(b);
        case Match::CentreWithin: return holdsCentre(b, a);
        case Match::WithinCentre: return holdsCentre(a, b);
        case Match::Meet: break;
        }
        return a.intersects(b);
    }

    /// Counts a wrong estimate: by more than ten times, where more than a few are found.
    void expect(double estimate, double truth, double few, const char* what, int kind, int other,
                Match match) {
        ++numCases_;
        if (estimate > 10 * std::max(truth, few) || truth > 10 * std::max(estimate, few)) {
            ++numWrong_;
            wrong_ << what << ' ' << kind << ' ' << other << " match " << static_cast<int>(match) << ": "
                   << estimate << " expected, " << truth << " found\n";
        }
    }

    void TearDown() override {
        EXPECT_LE(numWrong_, numCases_ / 20) << "of " << numCases_ << ":\n" << wrong_.str();
    }

    static constexpr Match allMatches[] = {Match::Meet, Match::FirstWithin, Match::SecondWithin,
                                           Match::CentreWithin, Match::WithinCentre};
    std::mt19937 random_{27};
    int numCases_ = 0;
    int numWrong_ = 0;
    std::ostringstream wrong_;
};

} // namespace

TEST_F(SpaceStatisticsTest, OfOneEnvelope) {
    for (int kind = 0; kind < kinds; ++kind) {
        const Envelopes layer = this->layer(kind, 5000);
        const SpaceStatistics statistics = this->statistics(layer);
        EXPECT_NEAR(statistics.rows(), 5000, 1e-6);
        for (int round = 0; round < 40; ++round) {
            const double side = std::pow(10, number(-2, 3));
            const Envelope window = round % 4 == 0 ? layer[random_() % layer.size()]
                                                   : box(number(-100, 1100), number(-100, 1100), side, side);
            for (const Match match : allMatches) {
                const auto truth = std::count_if(layer.begin(), layer.end(), [&](const Envelope& each) {
                    return matches(each, window, match);
                });
                expect(statistics.countMatching(window, match), static_cast<double>(truth), 10, "window",
                       kind, round, match);
            }
        }
    }
}

TEST_F(SpaceStatisticsTest, OfPairsOfTables) {
    constexpr double few = 300; // for every tenth row of the first
    for (int first = 0; first < kinds; ++first) {
        for (int second = 0; second < kinds; ++second) {
            const Envelopes a = layer(first, 3000), b = layer(second, 1000);
            const SpaceStatistics ofA = statistics(a), ofB = statistics(b);
            for (const Match match : {Match::Meet, Match::FirstWithin, Match::CentreWithin}) {
                double truth = 0;
                for (const Envelope& each : a) {
                    for (const Envelope& other : b) {
                        truth += matches(each, other, match);
                    }
                }
                expect(SpaceStatistics::countPairs(ofA, ofB, match), truth, few, "pairs", first, second,
                       match);
            }
        }
    }
}

TEST_F(SpaceStatisticsTest, OfNothingAndOfEdges) {
    Envelopes none;
    const SpaceStatistics empty(none, 0);
    EXPECT_EQ(empty.countMatching(Envelope::everything(), Match::Meet), 0);
    Envelopes edges{
        {-1e100, -1e100, 1e100, 1e100}, {0, 0, 0, 0}, {1e-300, 1e-300, 2e-300, 2e-300}, {1e99, 0, 1e99, 0}};
    const SpaceStatistics odd(edges, 4);
    for (const Match match : allMatches) {
        const double count = odd.countMatching({-1e308, 0, 1, 1e308}, match);
        EXPECT_TRUE(count >= 0 && count <= 4) << count;
        const double all = SpaceStatistics::countPairs(odd, odd, match);
        EXPECT_TRUE(all >= 0 && all <= 16) << all;
    }
}

} // namespace orvane::adaptor
