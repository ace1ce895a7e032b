#include <orvane/engine/functions/Text.h>

#include "Barrier.h"
#include "PreparedArgument.h"
#include "TextArguments.h"
#include "platform/utils/Utf8.h"
#include <orvane/engine/functions/Converters.h>
#include <orvane/engine/functions/PatternMatch.h>

#include <cstring>
#include <optional>

namespace orvane::engine {

namespace {

/// The position by UTF-16 code units.
qint64 positionInUtf16(sqlite3_value** values, int start, int occurrence) {
    const QString text = toQString(values[0]);
    const QString part = toQString(values[1]);
    int at = start - 1;
    for (int found = 0;; at += part.size()) {
        at = at <= text.size() ? text.indexOf(part, at, Qt::CaseSensitive) : -1;
        if (at < 0) {
            return 0;
        }
        if (++found == occurrence || part.isEmpty()) { // an empty part is found at one place over and over
            return at + 1;
        }
    }
}

/// The same for well-formed UTF-8, in which the bytes of a part are found where the part is. Nothing where
/// the bytes are not well formed, or the start lies within a character.
std::optional<qint64> positionInUtf8(sqlite3_value** values, int start, int occurrence) {
    const unsigned char* part = utf8View(values[1]);
    const unsigned char* text = utf8View(values[0]);
    if (text == nullptr || part == nullptr || *part == 0 || utf8::countUnits(part) < 0) {
        return std::nullopt;
    }
    const unsigned char* at = utf8::skipUnits(text, start - 1);
    if (at == nullptr || utf8::countUnits(at) < 0) {
        return std::nullopt;
    }
    const auto* const pattern = reinterpret_cast<const char*>(part);
    const size_t length = std::strlen(pattern);
    for (int found = 0;; at += length) {
        at = reinterpret_cast<const unsigned char*>(std::strstr(reinterpret_cast<const char*>(at), pattern));
        if (at == nullptr) {
            return 0;
        }
        if (++found == occurrence) {
            return utf8::countUnits(text, at) + 1;
        }
    }
}

/// Matches the text in argument 1 against the pattern in argument 0; NULL for NULL. A pattern that is
/// constant in a statement is read once.
template<typename Read>
void match(sqlite3_context* context, sqlite3_value** values, char32_t escape, Read read) {
    barrier(context, [&] {
        const unsigned char* pattern = utf8View(values[0]);
        const unsigned char* text = utf8View(values[1]);
        if (pattern == nullptr || text == nullptr) {
            return;
        }
        withPrepared<PatternMatch>(
            context, 0, [escape](const PatternMatch& prepared) { return prepared.escape() == escape; },
            [&] { return read(pattern); },
            [&](const PatternMatch& prepared) {
                sqlite3_result_int(context, prepared.matches(text) ? 1 : 0);
            });
    });
}

void matchLike(sqlite3_context* context, sqlite3_value** values, char32_t escape) {
    match(context, values, escape,
          [escape](const unsigned char* pattern) { return PatternMatch::like(pattern, escape); });
}

} // namespace

void inStrUTF16(sqlite3_context* context, int count, sqlite3_value** values) {
    barrier(context, [&] {
        if (count < 2 || count > 4) {
            sqlite3_result_error(
                context, "Invalid argument count. Usage: inStr (str1,str2[,start_at[,occurrence]]).", -1);
            return;
        }
        if (isNull(values[0]) || isNull(values[1])) {
            sqlite3_result_int(context, 0);
            return;
        }
        const int start = count > 2 ? sqlite3_value_int(values[2]) : 1;
        const int occurrence = count > 3 ? sqlite3_value_int(values[3]) : 1;
        if (start < 1) {
            sqlite3_result_error(context, "start_at must be >= 1", -1);
        } else if (occurrence < 1) {
            sqlite3_result_error(context, "occurence must be >= 1", -1);
        } else {
            const auto position = positionInUtf8(values, start, occurrence);
            sqlite3_result_int64(context, position ? *position : positionInUtf16(values, start, occurrence));
        }
    });
}

void caseInsensitiveGlob(sqlite3_context* context, int, sqlite3_value** values) {
    match(context, values, 0, &PatternMatch::glob);
}

void caseInsensitiveLike(sqlite3_context* context, int, sqlite3_value** values) {
    matchLike(context, values, 0);
}

void caseInsensitiveLikeEscape(sqlite3_context* context, int, sqlite3_value** values) {
    const unsigned char* escape = utf8View(values[2]);
    matchLike(context, values, escape == nullptr || *escape == 0 ? 0 : utf8::readCharacter(escape));
}

void caseSensitiveCompare(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (!isNull(values[0]) && !isNull(values[1])) {
            const QString a = toQString(values[0]);
            const QString b = toQString(values[1]);
            sqlite3_result_int(context, a.compare(b, Qt::CaseSensitive));
        }
    });
}

void caseSensitiveLocaleCompare(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (!isNull(values[0]) && !isNull(values[1])) {
            sqlite3_result_int(context,
                               QString::localeAwareCompare(toQString(values[0]), toQString(values[1])));
        }
    });
}

} // namespace orvane::engine
