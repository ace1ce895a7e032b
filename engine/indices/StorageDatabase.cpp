#include "engine/indices/StorageDatabase.h"

#include "engine/indices/StorageFile.h"
#include "platform/core/SqliteException.h"
#include <orvane/engine/Collator.h>
#include <orvane/engine/functions/Text.h>

#include <sqlite3.h>

#include <memory>

namespace orvane::engine {

namespace {

using Order = std::shared_ptr<const LocaleOrder>;

const LocaleOrder& orderOf(void* kept) {
    return **static_cast<const Order*>(kept);
}

int compareUtf16(void* order, int length1, const void* text1, int length2, const void* text2) {
    return collatorCompare(orderOf(order).collator(), length1, text1, length2, text2);
}

/// The database holds its texts in UTF-8. Without this form of the collation SQLite would allocate a
/// converted copy of both texts for every comparison.
int compareUtf8(void* order, int length1, const void* text1, int length2, const void* text2) {
    return orderOf(order).compare({static_cast<const char*>(text1), static_cast<std::size_t>(length1)},
                                  {static_cast<const char*>(text2), static_cast<std::size_t>(length2)});
}

/// Registers one form of the collation, which keeps what it compares with.
void addCollation(sqlite3* database, const StorageOptions& options, int encoding,
                  int (*compare)(void*, int, const void*, int, const void*)) {
    auto kept = std::make_unique<Order>(options.order);
    const auto remove = [](void* order) { delete static_cast<Order*>(order); };
    if (sqlite3_create_collation_v2(database, options.collate.toUtf8().constData(), encoding, kept.get(),
                                    compare, remove) != SQLITE_OK) {
        throw err::SqliteException(database, options.collate); // SQLite does not destroy what it refused
    }
    kept.release();
}

void registerFunction(sqlite3* database, const char* name, int arguments,
                      void (*function)(sqlite3_context*, int, sqlite3_value**)) {
    if (sqlite3_create_function(database, name, arguments, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
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
        addCollation(database->handle(), options, SQLITE_UTF16, compareUtf16);
        addCollation(database->handle(), options, SQLITE_UTF8, compareUtf8);
    }
    if (options.caseInsensitiveLike) {
        registerFunction(database->handle(), "like", 2, caseInsensitiveLike);
        registerFunction(database->handle(), "like", 3, caseInsensitiveLikeEscape);
    }
    if (options.caseInsensitiveGlob) {
        registerFunction(database->handle(), "glob", 2, caseInsensitiveGlob);
    }
    return database;
}

} // namespace orvane::engine
