#include "host/providers/text/Moment.h"

#include <QDateTime>
#include <QVariant>

#include <algorithm>

namespace orvane::files {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Takes what it understands from the front of a text.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest(text) {}

    bool take(char wanted) {
        const bool found = !rest.empty() && rest.front() == wanted;
        rest.remove_prefix(found ? 1 : 0);
        return found;
    }
    /// A number of so many digits; -1 when it is shorter or above `most`.
    int number(std::size_t fewest, std::size_t longest, int most) {
        int value = 0;
        std::size_t size = 0;
        for (; size < longest && size < rest.size() && isDigit(rest[size]); ++size) {
            value = value * 10 + (rest[size] - '0');
        }
        rest.remove_prefix(size);
        return size < fewest || value > most ? -1 : value;
    }

    std::string_view rest;
};

bool scanDate(Scanner& text, Moment& moment, MomentForm& form) {
    moment.year = text.number(4, 4, 9999);
    form.dateSeparator = text.take('/') ? '/' : '-';
    if (form.dateSeparator == '-' && !text.take('-')) {
        return false;
    }
    moment.month = text.number(1, 2, 12);
    const bool hasMonth = text.take(form.dateSeparator);
    moment.day = text.number(1, 2, 31);
    moment.hasDate = hasMonth && moment.year >= 0 && QDate::isValid(moment.year, moment.month, moment.day);
    return moment.hasDate;
}

bool scanZone(Scanner& text, MomentForm& form) {
    const std::string_view zone = text.rest;
    if (text.take('Z')) {
        form.zone = zone;
    } else if (text.take('+') || text.take('-')) {
        const bool hasHours = text.number(2, 2, 14) >= 0;
        const bool hasColon = text.take(':');
        if (!hasHours || ((hasColon || !text.rest.empty()) && text.number(2, 2, 59) < 0)) {
            return false;
        }
        form.zone = zone;
    }
    return true;
}

bool scanTime(Scanner& text, Moment& moment, MomentForm& form) {
    moment.hour = text.number(1, 2, 23);
    const bool hasHour = moment.hour >= 0 && text.take(':');
    moment.minute = text.number(2, 2, 59);
    if (!hasHour || moment.minute < 0) {
        return false;
    }
    moment.hasTime = true;
    form.hasSeconds = text.take(':');
    if (!form.hasSeconds) {
        return true;
    }
    const int seconds = text.number(2, 2, 59);
    moment.milliseconds = seconds * 1000;
    if (seconds < 0 || !text.take('.')) {
        return seconds >= 0;
    }
    int thousandths = 0;
    for (; !text.rest.empty() && isDigit(text.rest.front()); text.rest.remove_prefix(1)) {
        const int digit = text.rest.front() - '0';
        ++form.decimals;
        if (form.decimals <= 3) {
            thousandths = thousandths * 10 + digit;
        } else if (form.decimals == 4 && digit >= 5) {
            ++thousandths;
        }
    }
    for (int digits = form.decimals; digits < 3; ++digits) {
        thousandths *= 10;
    }
    moment.milliseconds = std::min(moment.milliseconds + thousandths, 59'999); // stays in its minute
    return form.decimals > 0;
}

void appendDigits(int number, int digits, std::string& text) {
    text.append(static_cast<std::size_t>(digits), '0');
    for (auto at = text.rbegin(); digits > 0; --digits, ++at, number /= 10) {
        *at = static_cast<char>('0' + number % 10);
    }
}

} // namespace

std::optional<Moment> momentInText(std::string_view text, MomentForm* form) {
    Moment moment;
    MomentForm found;
    Scanner scanner(text);
    const bool startsWithYear = text.size() > 4 && (text[4] == '-' || text[4] == '/');
    if (startsWithYear) {
        if (!scanDate(scanner, moment, found)) {
            return std::nullopt;
        }
        if (!scanner.rest.empty()) {
            found.joint = scanner.take('T') ? 'T' : ' ';
            if (found.joint == ' ' && !scanner.take(' ')) {
                return std::nullopt;
            }
        }
    }
    const bool hasTime = !startsWithYear || !scanner.rest.empty();
    if (hasTime && (!scanTime(scanner, moment, found) || (moment.hasDate && !scanZone(scanner, found)))) {
        return std::nullopt;
    }
    if (!scanner.rest.empty()) {
        return std::nullopt;
    }
    if (form) {
        *form = std::move(found);
    }
    return moment;
}

std::optional<Moment> momentOf(const QVariant& value) {
    const auto setDate = [](Moment& moment, const QDate& date) {
        moment.hasDate = date.isValid() && date.year() >= 0 && date.year() <= 9999;
        date.getDate(&moment.year, &moment.month, &moment.day);
    };
    const auto setTime = [](Moment& moment, const QTime& time) {
        moment.hasTime = time.isValid();
        moment.hour = time.hour();
        moment.minute = time.minute();
        moment.milliseconds = time.second() * 1000 + time.msec();
    };
    Moment moment;
    switch (value.userType()) {
    case QMetaType::QDate: setDate(moment, value.toDate()); break;
    case QMetaType::QTime: setTime(moment, value.toTime()); break;
    case QMetaType::QDateTime:
        setDate(moment, value.toDateTime().date());
        setTime(moment, value.toDateTime().time());
        break;
    default: {
        const QByteArray text = value.toString().trimmed().toUtf8();
        return momentInText({text.constData(), static_cast<std::size_t>(text.size())});
    }
    }
    return moment;
}

void appendMoment(const Moment& moment, bool withDate, bool withTime, std::string& text) {
    static const MomentForm cellForm{.decimals = 3, .zone = {}};
    appendMoment(moment, withDate, withTime, cellForm, text);
}

void appendMoment(const Moment& moment, bool withDate, bool withTime, const MomentForm& form,
                  std::string& text) {
    if (withDate) {
        appendDigits(moment.year, 4, text);
        text += form.dateSeparator;
        appendDigits(moment.month, 2, text);
        text += form.dateSeparator;
        appendDigits(moment.day, 2, text);
    }
    if (withDate && withTime) {
        text += form.joint;
    }
    if (!withTime) {
        return;
    }
    appendDigits(moment.hour, 2, text);
    text += ':';
    appendDigits(moment.minute, 2, text);
    if (form.hasSeconds || moment.milliseconds != 0) {
        text += ':';
        appendDigits(moment.milliseconds / 1000, 2, text);
        const int thousandths = moment.milliseconds % 1000;
        const int decimals = thousandths == 0 ? form.decimals : std::max(form.decimals, 3);
        if (decimals > 0) {
            text += '.';
            appendDigits(thousandths, 3, text);
            text.resize(text.size() - 3 + static_cast<std::size_t>(std::min(decimals, 3)));
            text.append(static_cast<std::size_t>(std::max(decimals - 3, 0)), '0');
        }
    }
    if (withDate) {
        text += form.zone;
    }
}

} // namespace orvane::files
