#include <orvane/engine/functions/Bounded.h>

#include "Barrier.h"

#include <spatialite.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::engine {

namespace {

/// Of parts in a result, about as many as the longest blob holds.
constexpr double mostParts = 2'000'000;
/// Degrees. SpatiaLite takes 360 off, or adds them, until it has less than two turns: for ever where that
/// does not change the number.
constexpr double largestAngle = 1e6;
/// Characters.
constexpr double widestPicture = 1e7;

constexpr const char* pieces = "(Coalesce(GLength(?1), 0) + Coalesce(Perimeter(?1), 0)) / Abs(?2)";

struct Bound {
    const char* name;
    std::vector<int> arities;    ///< -1 for any
    int angle = -1;              ///< position of the first of two angles in degrees
    const char* parts = nullptr; ///< expression for how many parts the result has
    bool isPicture = false;      ///< the first argument is a picture with widths, as of printf
};

const std::vector<Bound>& bounds() {
    static const std::vector<Bound> all{
        {"MakeArc", {5, 6, 7}, 3},
        {"MakeCircularSector", {5, 6, 7}, 3},
        {"MakeCircularStripe", {6, 7, 8}, 4},
        {"MakeEllipticArc", {6, 7, 8}, 4},
        {"MakeEllipticSector", {6, 7, 8}, 4},
<<<<<<< HEAD
        {"Line_Interpolate_Equidistant_Points", {2}, -1, pieces},
        {"ST_Line_Interpolate_Equidistant_Points", {2}, -1, pieces},
=======
        {"SquareGrid", {2, 3, 4}, -1, cells},
        {"ST_SquareGrid", {2, 3, 4}, -1, cells},
        {"TriangularGrid", {2, 3, 4}, -1, cells},
        {"ST_TriangularGrid", {2, 3, 4}, -1, cells},
        {"HexagonalGrid", {2, 3, 4}, -1, cells},
        {"ST_HexagonalGrid", {2, 3, 4}, -1, cells},
        {"Segmentize", {2}, -1, pieces},
        {"ST_Segmentize", {2}, -1, pieces},
>>>>>>> 87e66b9 (Refer to lines by their length and their m, along geodesics too)
        {"printf", {-1}, -1, nullptr, true},
        {"format", {-1}, -1, nullptr, true},
    };
    return all;
}

/// The widths and precisions in a picture of printf together. SQLite writes one blank after the other, and
/// goes on when there is no more room.
class PictureWidth {
public:
    PictureWidth(std::string_view picture, std::span<sqlite3_value* const> arguments)
        : rest_(picture), arguments_(arguments) {}

    double sum() {
        for (std::size_t at = rest_.find('%'); at != std::string_view::npos; at = rest_.find('%')) {
            rest_.remove_prefix(at + 1);
            rest_.remove_prefix(std::min(rest_.find_first_not_of("-+ #!,0"), rest_.size()));
            takeNumber();
            if (rest_.starts_with('.')) {
                rest_.remove_prefix(1);
                takeNumber();
            }
            rest_.remove_prefix(std::min(rest_.find_first_not_of("lh"), rest_.size()));
            if (rest_.starts_with('%')) {
                rest_.remove_prefix(1);
            } else {
                ++argument_;
            }
        }
        return sum_;
    }

private:
    void takeNumber() {
        double number = 0;
        if (rest_.starts_with('*')) {
            rest_.remove_prefix(1);
            number = argument_ < arguments_.size() ? sqlite3_value_double(arguments_[argument_]) : 0;
            ++argument_;
        }
        for (; !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; rest_.remove_prefix(1)) {
            number = 10 * number + (rest_.front() - '0');
        }
        sum_ += std::abs(number);
    }

    std::string_view rest_;
    std::span<sqlite3_value* const> arguments_;
    std::size_t argument_ = 0;
    double sum_ = 0;
};

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
struct SpatialiteCleanUp {
    void operator()(void* connection) const { spatialite_cleanup_ex(connection); }
};
struct DatabaseCloser {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

/// A connection of our own where SpatiaLite's functions bear their names still. Opened with the first call.
class Originals {
public:
    explicit Originals(int longest) : longest_(longest) {}

    /// The value of an expression of ?1, ?2, ... The statement is reset by the next call.
    sqlite3_stmt* evaluate(const std::string& expression, const std::vector<sqlite3_value*>& arguments) {
        sqlite3_stmt* const statement = prepared(expression);
        sqlite3_reset(statement);
        const int count =
            std::min(sqlite3_bind_parameter_count(statement), static_cast<int>(arguments.size()));
        for (int i = 0; i < count; ++i) {
            sqlite3_bind_value(statement, i + 1, arguments[static_cast<std::size_t>(i)]);
        }
        if (sqlite3_step(statement) != SQLITE_ROW) {
            throw std::runtime_error(sqlite3_errmsg(database_.get()));
        }
        return statement;
    }

private:
    sqlite3_stmt* prepared(const std::string& expression) {
        if (!database_) {
            open();
        }
        auto& statement = statements_[expression];
        if (!statement) {
            sqlite3_stmt* made = nullptr;
            if (sqlite3_prepare_v2(database_.get(), ("Select " + expression).c_str(), -1, &made, nullptr) !=
                SQLITE_OK) {
                throw std::runtime_error(sqlite3_errmsg(database_.get()));
            }
            statement.reset(made);
        }
        return statement.get();
    }
    void open() {
        sqlite3* opened = nullptr;
        const int code = sqlite3_open(":memory:", &opened);
        database_.reset(opened);
        if (code != SQLITE_OK) {
            throw std::bad_alloc();
        }
        sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, longest_);
        spatialite_.reset(spatialite_alloc_connection());
        spatialite_init_ex(opened, spatialite_.get(), 0);
        spatialite_set_silent_mode(spatialite_.get());
    }

    const int longest_;
    std::unique_ptr<void, SpatialiteCleanUp> spatialite_; ///< outlives the database
    std::unique_ptr<sqlite3, DatabaseCloser> database_;
    std::map<std::string, std::unique_ptr<sqlite3_stmt, StatementFinalizer>> statements_;
};

std::string callOf(const char* name, std::size_t arity) {
    std::string call = std::string(name) + '(';
    for (std::size_t i = 1; i <= arity; ++i) {
        call += (i == 1 ? "?" : ", ?") + std::to_string(i);
    }
    return call + ')';
}

struct BoundedFunction {
    const Bound& bound;
    std::shared_ptr<Originals> originals;

    void answer(sqlite3_context* context, const std::vector<sqlite3_value*>& arguments) const {
        if (bound.angle >= 0) {
            requireAngle(arguments[static_cast<std::size_t>(bound.angle)]);
            requireAngle(arguments[static_cast<std::size_t>(bound.angle) + 1]);
        }
        if (bound.isPicture && !arguments.empty()) {
            requireNarrow(arguments);
        }
        if (bound.parts) {
            sqlite3_stmt* const parts = originals->evaluate(bound.parts, arguments);
            if (sqlite3_column_double(parts, 0) > mostParts) {
                throw std::runtime_error(std::string(bound.name) + ": too many parts");
            }
        }
        sqlite3_stmt* const answer = originals->evaluate(callOf(bound.name, arguments.size()), arguments);
        sqlite3_result_value(context, sqlite3_column_value(answer, 0));
        sqlite3_reset(answer);
    }

private:
    void requireNarrow(const std::vector<sqlite3_value*>& arguments) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
        const std::string_view picture(
            text ? text : "", static_cast<std::size_t>(text ? sqlite3_value_bytes(arguments[0]) : 0));
        if (PictureWidth(picture, std::span(arguments).subspan(1)).sum() > widestPicture) {
            throw std::runtime_error(std::string(bound.name) + ": width out of range");
        }
    }
    void requireAngle(sqlite3_value* angle) const {
        if (std::abs(sqlite3_value_double(angle)) > largestAngle) {
            throw std::runtime_error(std::string(bound.name) + ": angle out of range");
        }
    }
};

void callBounded(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        static_cast<const BoundedFunction*>(sqlite3_user_data(context))
            ->answer(context, {values, values + count});
    });
}

} // namespace

int boundFunctions(sqlite3* database) {
    const auto originals = std::make_shared<Originals>(sqlite3_limit(database, SQLITE_LIMIT_LENGTH, -1));
    for (const Bound& bound : bounds()) {
        for (const int arity : bound.arities) {
            auto function = std::make_unique<BoundedFunction>(BoundedFunction{bound, originals});
            // SQLite calls the destructor also where it fails.
            const int code = sqlite3_create_function_v2(
                database, bound.name, arity, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
                function.release(), callBounded, nullptr, nullptr,
                [](void* released) { delete static_cast<BoundedFunction*>(released); });
            if (code != SQLITE_OK) {
                return code;
            }
        }
    }
    return SQLITE_OK;
}

} // namespace orvane::engine
