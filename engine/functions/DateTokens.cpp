#include "DateTokens.h"

#include <algorithm>
#include <limits>

namespace orvane::engine {

namespace {

struct DateWord {
    QString prefix;
    DateField field;
    int value;
};

/// Names of months and of days of the week (1 is Monday) by how they begin. The first entry that fits counts.
const std::vector<DateWord>& dateWordTable() {
    static const std::vector<DateWord> table = [] {
        std::vector<DateWord> words;
        const auto add = [&words](DateField field, int value, std::initializer_list<const char*> prefixes) {
            for (const char* prefix : prefixes) {
                words.push_back({QString::fromUtf8(prefix), field, value});
            }
        };
        add(DateField::Month, 1, {"jan", "янв"});
        add(DateField::Month, 3, {"мар", "mar"});
        add(DateField::Month, 5, {"май", "мая", "may"});
        add(DateField::Month, 7, {"июл", "jul"});
        add(DateField::Month, 8, {"авг", "aug"});
        add(DateField::Month, 10, {"окт", "oct"});
        add(DateField::Month, 12, {"дек", "dec"});
        add(DateField::Month, 4, {"apr", "апр"});
        add(DateField::Month, 6, {"jun", "июн"});
        add(DateField::Month, 9, {"сен", "sep"});
        add(DateField::Month, 11, {"ноя", "nov"});
        add(DateField::Month, 2, {"feb", "фев"});
        for (const auto& week : {std::array{"пн", "вт", "ср", "чт", "пт", "сб", "вс"},
                                 std::array{"пон", "вто", "сре", "чет", "пят", "суб", "вос"},
                                 std::array{"mon", "tue", "wed", "thu", "fri", "sat", "sun"}}) {
            for (size_t day = 0; day < week.size(); ++day) {
                add(DateField::Weekday, static_cast<int>(day) + 1, {week[day]});
            }
        }
        return words;
    }();
    return table;
}

DateToken certainToken(DateField field, int value) {
    DateToken token;
    token.value = value;
    token.score(field) = Certain;
    return token;
}

/// The number of a run of decimal digits of any script; negative when it does not fit 32 bits.
qint64 numberOfDigits(QStringView digits) {
    qint64 number = 0;
    for (const QChar digit : digits) {
        number = number * 10 + digit.digitValue();
        if (number > std::numeric_limits<quint32>::max()) {
            return -1;
        }
    }
    return number;
}

int milliseconds(QStringView digits, int value) {
    switch (digits.size()) {
    case 1: return value * 100;
    case 2: return value * 10;
    case 3: return value;
    default: return (static_cast<int>(numberOfDigits(digits.left(4))) + 5) / 10;
    }
}

/// The field of a number before a colon; false when the rules for other numbers decide.
bool scoreBeforeColon(DateToken& token, const DateTokens& earlier, bool hasTime) {
    DateField field = DateField::Hour;
    if (!earlier.empty() && earlier.back().isCertain(DateField::Minute)) {
        field = DateField::Second;
    } else if (!earlier.empty() && earlier.back().isCertain(DateField::Hour)) {
        field = DateField::Minute;
    } else if (hasTime) {
        return false;
    }
    token.score(field) = Certain;
    return true;
}

void scoreByContext(DateToken& token, QStringView digits, const DateTokens& earlier) {
    if (!earlier.empty()) {
        const DateToken& previous = earlier.back();
        if (previous.isCertain(DateField::Second)) {
            token = certainToken(DateField::Millisecond, milliseconds(digits, token.value));
            return;
        }
        if (digits.size() == 2 && previous.isCertain(DateField::Minute)) {
            token.score(DateField::Second) = Certain;
            return;
        }
        if (digits.size() == 2 && previous.isCertain(DateField::Hour)) {
            token.score(DateField::Minute) = Certain;
            return;
        }
    }
    if (digits.size() >= 3 || token.value < 1 || token.value > 31) {
        token.score(DateField::Year) = Certain;
        return;
    }
    token.score(DateField::Day) = Likely;
    token.score(DateField::Month) = token.value <= 12 ? Likely : NoScore;
    token.score(DateField::Year) = Weak;
}

/// `hasTime` says whether a token is certain to be an hour, a minute or a second.
void addNumber(DateTokens& tokens, bool& hasTime, QStringView digits, QStringView separator) {
    const qint64 number = numberOfDigits(digits);
    if (number < 0) {
        return;
    }
    const auto value = static_cast<qint32>(number);
    if (digits.size() == 8) {
        tokens.push_back(certainToken(DateField::Year, value / 10000));
        tokens.push_back(certainToken(DateField::Month, value % 10000 / 100));
        tokens.push_back(certainToken(DateField::Day, value % 100));
        return;
    }
    DateToken token;
    token.value = value;
    const bool beforeColon = separator == QLatin1String(":");
    if (!beforeColon || !scoreBeforeColon(token, tokens, hasTime)) {
        scoreByContext(token, digits, tokens);
    }
    hasTime = hasTime || token.isCertain(DateField::Hour) || token.isCertain(DateField::Minute) ||
              token.isCertain(DateField::Second);
    tokens.push_back(token);
}

void addWord(DateTokens& tokens, QStringView separator) {
    QString word;
    for (const QChar unit : separator) {
        if ((unit >= QLatin1Char('a') && unit <= QLatin1Char('z')) ||
            (unit.unicode() >= 128 && unit.isLetter())) {
            word += unit;
        }
    }
    if (word.isEmpty()) {
        return;
    }
    const auto& table = dateWordTable();
    const auto entry = std::find_if(table.begin(), table.end(), [&word](const DateWord& candidate) {
        return word.startsWith(candidate.prefix);
    });
    if (entry != table.end()) {
        tokens.push_back(certainToken(entry->field, entry->value));
    }
}

/// The end of the run of digits (or of anything else) that begins at `at`.
int endOfRun(const QString& text, int at, bool digits) {
    while (at < text.size() && text.at(at).isDigit() == digits) {
        ++at;
    }
    return at;
}

} // namespace

DateTokens dateTokens(const QString& text, CallTime& callTime) {
    DateTokens tokens;
    if (text == QLatin1String("now") || text == QLatin1String("today")) {
        const QDate today = callTime.today();
        tokens = {certainToken(DateField::Day, today.day()), certainToken(DateField::Month, today.month()),
                  certainToken(DateField::Year, today.year())};
        if (text == QLatin1String("now")) {
            const QTime time = callTime.now().time();
            tokens.insert(tokens.end(), {certainToken(DateField::Hour, time.hour()),
                                         certainToken(DateField::Minute, time.minute()),
                                         certainToken(DateField::Second, time.second()),
                                         certainToken(DateField::Millisecond, time.msec())});
        }
        return tokens;
    }
    const QStringView all(text);
    bool hasTime = false;
    for (int at = 0; at < text.size();) {
        const int digitsEnd = endOfRun(text, at, true);
        const int separatorEnd = endOfRun(text, digitsEnd, false);
        // A separator in front of the first digit belongs to no number and says nothing.
        if (digitsEnd > at) {
            const QStringView separator = all.mid(digitsEnd, separatorEnd - digitsEnd).trimmed();
            addNumber(tokens, hasTime, all.mid(at, digitsEnd - at), separator);
            addWord(tokens, separator);
        }
        at = separatorEnd;
    }
    return tokens;
}

} // namespace orvane::engine
