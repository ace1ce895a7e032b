#include "engine/indices/StorageDatabase.h"

#include "engine/indices/PatternFunctions.h"
#include "engine/indices/StorageFile.h"
#include "platform/core/SqliteException.h"
#include <orvane/engine/Collator.h>
#include <orvane/engine/functions/Text.h>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace orvane::engine {

namespace {

/// A text of the database in UTF-16, without a heap block for the usual lengths.
class Utf16View {
public:
    Utf16View(const char* utf8, int length) {
        const auto isAscii = [](char byte) { return static_cast<signed char>(byte) >= 0; };
        if (length > maxInline || !std::all_of(utf8, utf8 + length, isAscii)) {
            converted_ = QString::fromUtf8(utf8, length);
            return;
        }
        std::copy(utf8, utf8 + length, inline_.begin());
        inlineLength_ = length;
    }

    const void* data() const {
        return inlineLength_ < 0 ? static_cast<const void*>(converted_.utf16()) : inline_.data();
    }
    int bytes() const {
        return (inlineLength_ < 0 ? converted_.size() : inlineLength_) * int(sizeof(char16_t));
    }

private:
    static constexpr int maxInline = 64;

    std::array<char16_t, maxInline> inline_;
    int inlineLength_ = -1; ///< -1 when the text is in converted_
    QString converted_;
};

int compareUtf16(void* collator, int length1, const void* text1, int length2, const void* text2) {
    return collatorCompare(*static_cast<const QCollator*>(collator), length1, text1, length2, text2);
}

/// The database holds its texts in UTF-8. Without this form of the collation SQLite would allocate a
/// converted copy of both texts for every comparison.
int compareUtf8(void* collator, int length1, const void* text1, int length2, const void* text2) {
    if (length1 == length2 && std::memcmp(text1, text2, static_cast<std::size_t>(length1)) == 0) {
        return 0;
    }
    const Utf16View a(static_cast<const char*>(text1), length1);
    const Utf16View b(static_cast<const char*>(text2), length2);
    return compareUtf16(collator, a.bytes(), a.data(), b.bytes(), b.data());
}

void deleteCollator(void* collator) {
    delete static_cast<QCollator*>(collator);
}

void registerCollation(sqlite3* database, const StorageOptions& options) {
    const QByteArray name = options.collate.toUtf8();
    const auto add = [&](int encoding, int (*compare)(void*, int, const void*, int, const void*)) {
        // SQLite does not call the destructor of a collation that it refused.
        auto collator = std::make_unique<QCollator>(options.collator);
        if (sqlite3_create_collation_v2(database, name.constData(), encoding, collator.get(), compare,
                                        deleteCollator) != SQLITE_OK) {
            throw err::SqliteException(database, options.collate);
        }
        collator.release();
    };
    add(SQLITE_UTF16, compareUtf16);
    add(SQLITE_UTF8, compareUtf8);
}

void registerFunction(sqlite3* database, const char* name, int arguments,
                      void (*function)(sqlite3_context*, int, sqlite3_value**)) {
    if (sqlite3_create_function(database, name, arguments, SQLITE_UTF16 | SQLITE_DETERMINISTIC, nullptr,
                                function, nullptr, nullptr) != SQLITE_OK) {
        throw err::SqliteException(database, QLatin1String(name));
    }
}

} // namespace

std::shared_ptr<dp::SqliteDatabaseAccess> openStorageDatabase(const QString& path,
                                                              const StorageOptions& options) {
    auto database = std::make_shared<dp::SqliteDatabaseAccess>(path);
    claimStorage(*database);
    if (!options.collate.isEmpty()) {
        registerCollation(database->handle(), options);
    }
    if (options.caseInsensitiveLike) {
        registerFunction(database->handle(), "like", 2, searchLike);
        registerFunction(database->handle(), "like", 3, caseInsensitiveLikeEscape);
    }
    if (options.caseInsensitiveGlob) {
        registerFunction(database->handle(), "glob", 2, searchGlob);
    }
    return database;
}

} // namespace orvane::engine
