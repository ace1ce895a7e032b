#pragma once

#include <QStringView>

#include <sqlite3.h>

#include <optional>

namespace orvane::engine {

inline bool isNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

/// The UTF-16 text of an SQL value up to its first zero, without a copy; empty for NULL. Valid until the
/// value is converted again or the function returns.
inline QStringView textView(sqlite3_value* value) {
    const auto* text = static_cast<const QChar*>(sqlite3_value_text16(value));
    return text != nullptr ? QStringView(text) : QStringView();
}

/// The UTF-8 text, which ends at its first zero; null for NULL. Valid as above.
inline const unsigned char* utf8View(sqlite3_value* value) {
    return sqlite3_value_text(value);
}

/// The number that a text begins with, by the rules of toDouble; nothing for null and where there is none.
std::optional<double> doubleInText(const unsigned char* text);

/// Gives the text back to SQLite, which copies it.
inline void resultText(sqlite3_context* context, QStringView text) {
    static const QChar empty;
    const auto bytes = static_cast<sqlite3_uint64>(text.size()) * sizeof(QChar);
    // A null pointer would be an SQL NULL.
    sqlite3_result_text64(context, reinterpret_cast<const char*>(text.isEmpty() ? &empty : text.data()),
                          bytes, SQLITE_TRANSIENT, SQLITE_UTF16);
}

inline void resultUtf8(sqlite3_context* context, const unsigned char* begin, const unsigned char* end) {
    sqlite3_result_text64(context, reinterpret_cast<const char*>(begin),
                          static_cast<sqlite3_uint64>(end - begin), SQLITE_TRANSIENT, SQLITE_UTF8);
}

} // namespace orvane::engine
