#pragma once

#include "platform/utils/Utf8.h"

#include <QVarLengthArray>

#include <sqlite3.h>

#include <optional>

namespace orvane::engine {

inline bool isNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

/// The UTF-8 text, which ends at its first zero; null for NULL. Valid until the function returns.
inline const unsigned char* utf8View(sqlite3_value* value) {
    return sqlite3_value_text(value);
}

/// The number that a text begins with, by the rules of toDouble; nothing for null and where there is none.
std::optional<double> doubleInText(const unsigned char* text);

/// Gives the bytes back to SQLite, which copies them.
inline void resultUtf8(sqlite3_context* context, const unsigned char* begin, const unsigned char* end) {
    sqlite3_result_text64(context, reinterpret_cast<const char*>(begin),
                          static_cast<sqlite3_uint64>(end - begin), SQLITE_TRANSIENT, SQLITE_UTF8);
}

/// The same of a text; halves of surrogate pairs become U+FFFD. SQLite would join them with what follows, and
/// take a byte order mark away.
inline void resultText(sqlite3_context* context, QStringView text) {
    QVarLengthArray<char, 1024> bytes(static_cast<int>(text.size()) * utf8::mostBytesOfUnit + 1);
    const auto* const begin = reinterpret_cast<const unsigned char*>(bytes.data());
    resultUtf8(context, begin, begin + utf8::encode(text, bytes.data()));
}

} // namespace orvane::engine
