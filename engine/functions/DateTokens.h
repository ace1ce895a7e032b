#pragma once

#include <QDateTime>
#include <QString>

#include <array>
#include <vector>

namespace orvane::engine {

/// The local time of one call, read from the clock when first asked for: most texts need none, and the system
/// looks its time zone up on every reading.
class CallTime {
public:
    using Clock = QDateTime (*)();

    explicit CallTime(Clock clock) : clock_(clock) {}
    const QDateTime& now() {
        if (now_.isNull()) {
            now_ = clock_();
        }
        return now_;
    }
    QDate today() { return now().date(); }

private:
    Clock clock_;
    QDateTime now_;
};

enum class DateField { Day, Month, Year, Hour, Minute, Second, Millisecond, Weekday };
constexpr size_t dateFieldCount = 8;

/// How strongly a token is believed to be a field.
enum DateScore : quint8 { NoScore = 0, Weak = 2, Likely = 5, Certain = 10 };

/// A number or a name in a date text.
struct DateToken {
    qint32 value = 0;
    std::array<quint8, dateFieldCount> scores{};

    quint8& score(DateField field) { return scores[static_cast<size_t>(field)]; }
    quint8 score(DateField field) const { return scores[static_cast<size_t>(field)]; }
    bool isCertain(DateField field) const { return score(field) == Certain; }
};

using DateTokens = std::vector<DateToken>;

/// The tokens of a text in lower case without white space around, in their order.
DateTokens dateTokens(const QString& text, CallTime& callTime);

} // namespace orvane::engine
