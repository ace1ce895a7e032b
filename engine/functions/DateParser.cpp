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
        : callTime_(callTime), day_{candidates[0], undecidedPart, &QDate::day},
          month_{candidates[1], undecidedPart, &QDate::month}, year_{candidates[2], undecidedYear,
                                                                     &QDate::year},
          weekday_(candidates[static_cast<size_t>(DateField::Weekday)]) {}

    QDate resolve() {
        for (Part* part : parts_) {
            if (part->candidates.list.isEmpty()) {
                part->value = today(*part);
            }
        }
        eliminate();
        if (weekday_.exist() && day_.isUndecided()) {
            if (const QDate date = dateOnWeekday(weekday_.first()); date.isValid()) {
                return date;
            }
        }
        for (Part* part : parts_) {
            if (part->isUndecided()) {
                take(*part);
            }
        }
        return date(year_.value, month_.value, day_.value);
    }

private:
    static constexpr int undecidedPart = 0;
    static constexpr int undecidedYear = -1;

    struct Part {
        Candidates& candidates;
        int undecided;
        int (QDate::*ofDate)() const;
        int value = undecided;

        bool isUndecided() const { return value == undecided; }
        /// What the part may still be.
        QVarLengthArray<int, 8> values() const {
            QVarLengthArray<int, 8> result;
            if (!isUndecided()) {
                result.append(value);
                return result;
            }
            for (const Candidate& candidate : candidates.list) {
                result.append(candidate.value);
            }
            return result;
        }
    };

    int today(const Part& part) const { return (callTime_.today().*part.ofDate)(); }

    static QDate date(int year, int month, int day) { return QDate(normalizedYear(year), month, day); }

    /// The first candidate, which is then none of the other parts; today's value where none is left.
    void take(Part& part) {
        if (part.candidates.list.isEmpty()) {
            part.value = today(part);
            return;
        }
        const Candidate chosen = part.candidates.list.first();
        part.value = chosen.value;
        for (Part* other : parts_) {
            if (other != &part) {
                other->candidates.remove(chosen.token);
            }
        }
    }

    /// Settles parts with one candidate. That may leave another part with one, unless the token was certain
    /// and stood nowhere else.
    void eliminate() {
        const auto settleOne = [this] {
            for (Part* part : parts_) {
                if (part->isUndecided() && part->candidates.list.size() == 1) {
                    take(*part);
                    if (part->candidates.best != Certain) {
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
        for (const int year : year_.values()) {
            for (const int month : month_.values()) {
                for (const int day : day_.values()) {
                    if (const QDate candidate = date(year, month, day); candidate.dayOfWeek() == weekday) {
                        return candidate;
                    }
                }
            }
        }
        return {};
    }

    CallTime& callTime_;
    Part day_;
    Part month_;
    Part year_;
    const Candidates& weekday_;
    std::array<Part*, 3> parts_{&day_, &month_, &year_};
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
