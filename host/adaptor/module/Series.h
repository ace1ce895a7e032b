#pragma once

#include <QDateTime>

#include <sqlite3.h>

#include <cstdint>
#include <optional>

namespace orvane::adaptor {

/// Values at equal distances, from a first one to a last one that is not passed: whole numbers, reals, or
/// dates (texts) at a distance of years, months, weeks, days, hours, minutes or seconds. Each is reckoned
/// from the first, so that no error adds up. Has no memory for its values.
class Series {
public:
    /// Nothing where an argument is NULL. `step` may be null: 1, or a day. Throws std::runtime_error for what
    /// makes no series.
    static std::optional<Series> of(sqlite3_value* first, sqlite3_value* last, sqlite3_value* step);

    /// How many values there are.
    std::int64_t count() const { return count_; }
    std::int64_t place() const { return place_; }
    bool isAtEnd() const { return place_ >= count_; }
    void advance() { ++place_; }
    /// Gives the value at the place.
    void setValue(sqlite3_context* context) const;

private:
    enum class Kind { Integers, Reals, Dates };

    void setIntegers(std::int64_t first, std::int64_t last, std::int64_t step);
    void setReals(double first, double last, double step);
    void setDates(sqlite3_value* first, sqlite3_value* last, sqlite3_value* step);
    QDateTime dateAt(std::int64_t place) const;

    Kind kind_ = Kind::Integers;
    std::int64_t first_ = 0;
    std::int64_t step_ = 1;
    double firstReal_ = 0;
    double stepReal_ = 1;
    QDateTime firstDate_;
    std::int64_t months_ = 0;       ///< of the distance between dates
    std::int64_t milliseconds_ = 0; ///< likewise
    bool hasTime_ = false;          ///< the dates are shown with their time
    std::int64_t count_ = 0;
    std::int64_t place_ = 0;
};

} // namespace orvane::adaptor
