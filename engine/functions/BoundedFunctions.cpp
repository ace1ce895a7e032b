#include <orvane/engine/functions/Bounded.h>

#include "Barrier.h"

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

/// Characters.
constexpr double widestPicture = 1e7;

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
struct DatabaseCloser {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

/// A connection of our own where SQLite's functions bear their names still. Opened with the first call.
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
    }

    const int longest_;
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

/// printf or its second name.
struct BoundedFunction {
    const char* name;
    std::shared_ptr<Originals> originals;

    void answer(sqlite3_context* context, const std::vector<sqlite3_value*>& arguments) const {
        if (!arguments.empty()) {
            requireNarrow(arguments);
        }
        sqlite3_stmt* const answer = originals->evaluate(callOf(name, arguments.size()), arguments);
        sqlite3_result_value(context, sqlite3_column_value(answer, 0));
        sqlite3_reset(answer);
    }

private:
    void requireNarrow(const std::vector<sqlite3_value*>& arguments) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
        const std::string_view picture(
            text ? text : "", static_cast<std::size_t>(text ? sqlite3_value_bytes(arguments[0]) : 0));
        if (PictureWidth(picture, std::span(arguments).subspan(1)).sum() > widestPicture) {
            throw std::runtime_error(std::string(name) + ": width out of range");
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
    for (const char* const name : {"printf", "format"}) {
        auto function = std::make_unique<BoundedFunction>(BoundedFunction{name, originals});
        // SQLite calls the destructor also where it fails.
        const int code = sqlite3_create_function_v2(
            database, name, -1, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, function.release(),
            callBounded, nullptr, nullptr,
            [](void* released) { delete static_cast<BoundedFunction*>(released); });
        if (code != SQLITE_OK) {
            return code;
        }
    }
    return SQLITE_OK;
}

} // namespace orvane::engine
