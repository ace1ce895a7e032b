#include <orvane/engine/functions/Arithmetic.h>

#include "Barrier.h"
#include <orvane/engine/functions/Converters.h>

#include <new>

namespace orvane::engine {

namespace {

// SQLite fills the state of a group with zeros when it first hands it out, which is how these begin.
struct Sums {
    double weighted;
    double weights;
};

struct RunningMean {
    double mean;
    double weights;
    bool failed;
};

template<typename State>
State& stateOfGroup(sqlite3_context* context) {
    void* memory = sqlite3_aggregate_context(context, sizeof(State));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return *static_cast<State*>(memory);
}

/// Null when the group has no row.
template<typename State>
const State* finishedState(sqlite3_context* context) {
    return static_cast<const State*>(sqlite3_aggregate_context(context, 0));
}

/// Calls `add` with value and weight when both are numbers.
template<typename Add>
void withRow(sqlite3_value** values, Add&& add) {
    bool okWeight = false;
    bool okValue = false;
    const double weight = toDouble(values[1], &okWeight);
    const double value = toDouble(values[0], &okValue);
    if (okWeight && okValue) {
        add(value, weight);
    }
}

void divisionByZero(sqlite3_context* context) {
    sqlite3_result_error(context, "Division by zero", -1);
}

} // namespace

void WtAvg::step(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        Sums& sums = stateOfGroup<Sums>(context);
        withRow(values, [&](double value, double weight) {
            sums.weighted += value * weight;
            sums.weights += weight;
        });
    });
}

void WtAvg::final(sqlite3_context* context) {
    barrier(context, [&] {
        const Sums* sums = finishedState<Sums>(context);
        if (sums == nullptr) {
            return;
        }
        if (sums->weights == 0.0) {
            divisionByZero(context);
        } else {
            sqlite3_result_double(context, sums->weighted / sums->weights);
        }
    });
}

void WtAvgSafe::step(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        auto& state = stateOfGroup<RunningMean>(context);
        if (state.failed) {
            return;
        }
        withRow(values, [&](double value, double weight) {
            state.weights += weight;
            if (state.weights == 0.0) {
                state.failed = true;
            } else {
                state.mean += (value - state.mean) * weight / state.weights;
            }
        });
    });
}

void WtAvgSafe::final(sqlite3_context* context) {
    barrier(context, [&] {
        const auto* state = finishedState<RunningMean>(context);
        if (state == nullptr) {
            return;
        }
        if (state->failed) {
            divisionByZero(context);
        } else {
            sqlite3_result_double(context, state->mean);
        }
    });
}

} // namespace orvane::engine
