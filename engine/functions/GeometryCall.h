#pragma once

#include "Barrier.h"
#include "GeometryArguments.h"

#include <QByteArray>
#include <QString>

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace orvane::engine {

class EngineCache;

/// One call of a geometry function: its arguments, counted from 0, and its result. What it throws names the
/// function and, counted from 1, the argument.
class GeometryCall {
public:
    /// The name is the one that messages have, whichever the statement uses.
    GeometryCall(const char* function, sqlite3_context* context, int count, sqlite3_value** values)
        : function_(function), context_(context), count_(count), values_(values) {}

    int count() const { return count_; }
    EngineCache& cache() const { return *static_cast<EngineCache*>(sqlite3_user_data(context_)); }
    sqlite3_value* value(int position) const { return values_[position]; }
    /// Whether there is such an argument, and it is not NULL.
    bool isGiven(int position) const {
        return position < count_ && sqlite3_value_type(values_[position]) != SQLITE_NULL;
    }
    /// Of the first `required` arguments.
    bool hasNull(int required) const;

    // The readers throw std::runtime_error where the argument is something else.

    /// Never null.
    GeometryPtr geometry(int position) const;
    /// The second in the system of the first; a system that one of them lacks is the other's. Those that the
    /// statement met lately are neither decoded nor transformed again, and keep what was computed from them.
    GeometryPair geometries(int first, int second) const;
    /// Finite.
    double number(int position) const;
    double number(int position, double otherwise) const {
        return isGiven(position) ? number(position) : otherwise;
    }
    /// 0 and above.
    double notNegative(int position) const;
    double notNegative(int position, double otherwise) const {
        return isGiven(position) ? notNegative(position) : otherwise;
    }
    /// Above 0.
    double positive(int position) const;
    /// Any number without a fraction.
    std::int64_t integer(int position) const;
    std::int64_t integer(int position, std::int64_t otherwise) const {
        return isGiven(position) ? integer(position) : otherwise;
    }
    /// Null where it is not given. Read once per statement where it is constant.
    QString text(int position) const;
    /// The name of units; null, which asks for metres, for a number as well: with SpatiaLite that stands
    /// there to choose between the ellipsoid and a sphere.
    QString units(int position) const;
    /// A text as its bytes.
    std::string_view utf8(int position) const;
    std::string_view blob(int position) const;
    /// By EPSG code or as a text (cs::CoordSysFactory); null where it is not given, and for codes of 0 and
    /// below.
    std::shared_ptr<cs::CoordSystem> coordSystem(int position) const;

    /// Throws std::runtime_error: what the argument has to be, a text marked with
    /// QT_TRANSLATE_NOOP("orvane::geometry", ...) that reads on from a colon.
    [[noreturn]] void reject(int position, const char* expected) const;
    /// Within a handler: throws the failure again, with the name of the function where it had none.
    [[noreturn]] void rethrow() const;

    /// A SpatiaLite blob where one holds all of it, that is for linear geometries whose system has an EPSG
    /// code or which have none; else an engine blob. NULL for null.
    void give(const GeometryPtr& geometry) const;
    void give(double value) const { sqlite3_result_double(context_, value); }
    void give(bool value) const { sqlite3_result_int(context_, value ? 1 : 0); }
    void give(int value) const { sqlite3_result_int(context_, value); }
    void give(std::int64_t value) const { sqlite3_result_int64(context_, value); }
    void give(const QString& text) const;
    /// In UTF-8.
    void give(const std::string& text) const;
    void give(const QByteArray& blob) const;
    /// NULL for none.
    template<typename Value>
    void give(const std::optional<Value>& value) const {
        if (value) {
            give(*value);
        }
    }

private:
    const char* function_;
    sqlite3_context* context_;
    int count_;
    sqlite3_value** values_;
};

/// Evaluates an SQL function of geometries: NULL where one of the first `required` arguments is NULL, else
/// what the body makes of the call. Failures become the statement's error, with the function's name.
template<typename Body>
void evaluate(const char* function, int required, sqlite3_context* context, int count, sqlite3_value** values,
              Body&& body) noexcept {
    barrier(context, [&] {
        const GeometryCall call(function, context, count, values);
        try {
            if (!call.hasNull(required)) {
                call.give(body(call));
            }
        } catch (...) {
            call.rethrow();
        }
    });
}

/// A function of one geometry: what `make` makes of it, or of a pointer to it.
template<typename Make>
void madeOfOne(const char* function, sqlite3_context* context, int count, sqlite3_value** values,
               const Make& make) noexcept {
    evaluate(function, 1, context, count, values, [&](const GeometryCall& call) {
        if constexpr (std::is_invocable_v<Make, const GeometryPtr&>) {
            return make(call.geometry(0));
        } else {
            return make(*call.geometry(0));
        }
    });
}

} // namespace orvane::engine
