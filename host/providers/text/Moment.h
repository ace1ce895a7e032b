#pragma once

#include <optional>
#include <string>
#include <string_view>

class QVariant;

namespace orvane::files {

/// A date, a time of day or both, as it was written: no zone is applied to it.
struct Moment {
    bool hasDate = false, hasTime = false;
    int year = 0, month = 0, day = 0;
    int hour = 0, minute = 0, milliseconds = 0; ///< those of the minute
};

/// How a moment is written: 2024-05-06, 2024/05/06 07:08, 2024-05-06T07:08:09.5+03:00, 07:08:09.
struct MomentForm {
    char dateSeparator = '-';
    char joint = ' ';
    bool hasSeconds = true;
    int decimals = 0;
    std::string zone; ///< "Z" or an offset from UTC, put behind the time as it is
};

/// Nothing for any other text, and for a day or an hour that does not exist. `form` gets the way it is
/// written unless null.
std::optional<Moment> momentInText(std::string_view text, MomentForm* form = nullptr);
/// Of a QDate, QTime, QDateTime or text.
std::optional<Moment> momentOf(const QVariant& value);

/// The form of cells: yyyy-MM-dd, hh:mm:ss.zzz, or both and a blank.
void appendMoment(const Moment& moment, bool withDate, bool withTime, std::string& text);
/// More decimals than the form has where the moment would lose some without.
void appendMoment(const Moment& moment, bool withDate, bool withTime, const MomentForm& form,
                  std::string& text);

} // namespace orvane::files
