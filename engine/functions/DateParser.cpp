#include "DateParser.h"

#include <orvane/engine/functions/Converters.h>

#include <QVarLengthArray>

#include <algorithm>

namespace orvane::engine {

namespace {

struct Candidate {
    int value;
    size_t token;
};

/// The tokens that are most strongly believed to be a field.
struct Candidates {
    QVarLengthArray<Candidate, 8> list;
    int best = NoScore;

    bool exist() const { return best != NoScore; }
    int first() const { return list.isEmpty() ? 0 : list.first().value; }
    void remove(size_t token) {
        const auto end = std::remove_if(list.begin(), list.end(), [token](const Candidate& candidate) {
            return candidate.token == token;
        });
        list.resize(static_cast<int>(end - list.begin()));
    }
};

using FieldCandidates = std::array<Candidates, dateFieldCount>;

FieldCandidates candidatesOf(const DateTokens& tokens) {
    FieldCandidates result;
    for (size_t field = 0; field < dateFieldCount; ++field) {
        Candidates& candidates = result[field];
        for (size_t i = 0; i < tokens.size() && candidates.best != Certain; ++i) {
            const int score = tokens[i].scores[field];
            if (score > candidates.best) {
                candidates.best = score;
                candidates.list.clear();
            }
            if (score != NoScore && score == candidates.best) {
                candidates.list.append({tokens[i].value, i});
            }
        }
    }
    return result;
}

int normalizedYear(int year) {
    if (year < 0 || year >= 1000) {
        return year;
    }
    return year + (year < 70 ? 2000 : (year < 100 ? 1900 : 1000));
}

/// Chooses the day, the month and the year among their candidates. A token serves one field.
class DateResolver {
public:
    DateResolver(FieldCandidates& candidates, CallTime& callTime)
        : candidates_(candidates), callTime_(callTime) {}

    QDate resolve() {
        for (std::size_t field = 0; field < undecided.size(); ++field) {
            if (candidates_[field].list.isEmpty()) {
                chosen_[field] = today(field);
            }
        }
        eliminate();
        const Candidates& weekday = candidates_[static_cast<std::size_t>(DateField::Weekday)];
        if (weekday.exist() && isUndecided(0)) {
            if (const QDate date = dateOnWeekday(weekday.first()); date.isValid()) {
                return date;
            }
        }
        for (std::size_t field = 0; field < undecided.size(); ++field) {
            if (isUndecided(field)) {
                take(field);
            }
        }
        return date(chosen_[2], chosen_[1], chosen_[0]);
    }

private:
    /// Of the day, the month and the year.
    static constexpr std::array<int, 3> undecided{0, 0, -1};

    bool isUndecided(std::size_t field) const { return chosen_[field] == undecided[field]; }

    /// What the field may still be, each value once.
    QVarLengthArray<int, 32> values(std::size_t field) const {
        QVarLengthArray<int, 32> result;
        if (!isUndecided(field)) {
            result.append(chosen_[field]);
            return result;
        }
        for (const Candidate& candidate : candidates_[field].list) {
            if (!result.contains(candidate.value)) {
                result.append(candidate.value);
            }
        }
        return result;
    }

    int today(std::size_t field) {
        const QDate today = callTime_.today();
        return field == 0 ? today.day() : (field == 1 ? today.month() : today.year());
    }

    static QDate date(int year, int month, int day) { return QDate(normalizedYear(year), month, day); }

    /// The first candidate, which is then none of the other fields; today's value where none is left.
    void take(std::size_t field) {
        if (candidates_[field].list.isEmpty()) {
            chosen_[field] = today(field);
            return;
        }
        const Candidate chosen = candidates_[field].list.first();
        chosen_[field] = chosen.value;
        for (std::size_t other = 0; other < undecided.size(); ++other) {
            if (other != field) {
                candidates_[other].remove(chosen.token);
            }
        }
    }

    /// Settles fields with one candidate. That may leave another field with one, unless the token was certain
    /// and stood nowhere else.
    void eliminate() {
        const auto settleOne = [this] {
            for (std::size_t field = 0; field < undecided.size(); ++field) {
                if (isUndecided(field) && candidates_[field].list.size() == 1) {
                    take(field);
                    if (candidates_[field].best != Certain) {
                        return true;
                    }
                }
            }
            return false;
        };
        while (settleOne()) {
        }
    }

    QDate dateOnWeekday(int weekday) const {
        const auto days = values(0);
        const auto months = values(1);
        for (const int year : values(2)) {
            for (const int month : months) {
                for (const int day : days) {
                    if (const QDate candidate = date(year, month, day); candidate.dayOfWeek() == weekday) {
                        return candidate;
                    }
                }
            }
        }
        return {};
    }

    FieldCandidates& candidates_;
    CallTime& callTime_;
    std::array<int, 3> chosen_ = undecided;
};

} // namespace

QString parseDateText(const QString& text, CallTime::Clock clock) {
    CallTime callTime(clock);
    FieldCandidates fields = candidatesOf(dateTokens(text.trimmed().toLower(), callTime));
    const auto of = [&fields](DateField field) -> const Candidates& {
        return fields[static_cast<size_t>(field)];
    };
    const auto anyOf = [&of](std::initializer_list<DateField> some) {
        return std::any_of(some.begin(), some.end(), [&of](DateField field) { return of(field).exist(); });
    };

    const QTime time(of(DateField::Hour).first(), of(DateField::Minute).first(),
                     of(DateField::Second).first(), of(DateField::Millisecond).first());
    if (!anyOf({DateField::Hour, DateField::Minute, DateField::Second, DateField::Millisecond})) {
        return toString(DateResolver(fields, callTime).resolve());
    }
    if (!anyOf({DateField::Day, DateField::Month, DateField::Year, DateField::Weekday})) {
        return toString(time);
    }
    // Not through QDateTime, which would move times that the local clock skips. Years of five digits have no
    // text.
    const QString date = toString(DateResolver(fields, callTime).resolve());
    return !date.isEmpty() && time.isValid() ? date + QLatin1Char(' ') + toString(time) : QString();
}

} // namespace orvane::engine
