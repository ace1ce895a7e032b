#include "engine/indices/StorageDatabase.h"

#include "engine/indices/PatternFunctions.h"
#include "engine/indices/StorageFile.h"
#include "platform/core/SqliteException.h"
#include <orvane/engine/Collator.h>
#include <orvane/engine/functions/Text.h>

#include <QVarLengthArray>

#include <sqlite3.h>

#include <cstring>

namespace orvane::engine {

namespace {

constexpr int inlineUnits = 128;
using Utf16 = QVarLengthArray<QChar, inlineUnits>;

/// UTF-16 of a text of the database, without a heap block for the usual lengths.
void toUtf16(const char* text, int length, Utf16& utf16) {
    utf16.resize(length);
    for (int i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(text[i]) >= 0x80) {
            const QString converted = QString::fromUtf8(text, length);
            utf16.resize(converted.size());
            std::copy(converted.begin(), converted.end(), utf16.begin());
            return;
        }
        utf16[i] = QLatin1Char(text[i]);
    }
}

int compareUtf16(void* collator, int length1, const void* text1, int length2, const void* text2) {
    return collatorCompare(*static_cast<const QCollator*>(collator), length1, text1, length2, text2);
}

/// The database holds its texts in UTF-8. Without this form of the collation SQLite would allocate a
/// converted copy of both texts for every comparison.
int compareUtf8(void* collator, int length1, const void* text1, int length2, const void* text2) {
    if (length1 == length2 && std::memcmp(text1, text2, static_cast<std::size_t>(length1)) == 0) {
        return 0;
    }
    constexpr int unit = static_cast<int>(sizeof(QChar));
    Utf16 a;
    Utf16 b;
    toUtf16(static_cast<const char*>(text1), length1, a);
    toUtf16(static_cast<const char*>(text2), length2, b);
    return compareUtf16(collator, a.size() * unit, a.constData(), b.size() * unit, b.constData());
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
