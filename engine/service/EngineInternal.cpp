#include "engine/service/EngineInternal.h"

#include "platform/core/SqliteException.h"
#include "platform/geometry/forms/GeosInterrupt.h"
#include "platform/sql/parsing/SqlRuntime.h"
#include <orvane/engine/Collator.h>

#include <QCoreApplication>
#include <QSqlDriver>
#include <QVariant>

#include <sqlite3.h>

#include <spatialite.h>

namespace orvane {

namespace {

constexpr char driverName[] = "QTSQLITE";
constexpr char connectionName[] = "ORVANEENGINE";

QString message(const char* text, const char* argument) {
    return QObject::tr(text).replace(QLatin1String("%0"), QLatin1String(argument));
}

[[noreturn]] void fail(const char* text, const char* argument) {
    throw std::runtime_error(message(text, argument).toStdString());
}

QSqlDatabase openEngineDatabase() {
    QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath() +
                                     QStringLiteral("/../../third-party/out/qtplugins"));
    QSqlDatabase database =
        QSqlDatabase::addDatabase(QLatin1String(driverName), QLatin1String(connectionName));
    if (!database.isValid()) {
        fail(QT_TRANSLATE_NOOP("QObject", "Не загружен драйвер %0"), driverName);
    }
    database.setDatabaseName(QStringLiteral(":memory:"));
    if (!database.open()) {
        fail(QT_TRANSLATE_NOOP("QObject", "Инициализация %0 в оперативной памяти"), driverName);
    }
    return database;
}

/// The Bloom filter of a join in SQLite 3.40 takes texts of different lengths for different ones, and so
/// loses rows whose texts are equal only under the collation: "é" in one character and in two. There is no
/// other way to switch it off.
void leaveBloomFiltersOut(sqlite3* database) {
    constexpr unsigned bloomFilter = 0x00080000; // SQLITE_BloomFilter in SQLite's sqliteInt.h
    sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, database, bloomFilter);
}

} // namespace

Engine::Internal::Internal(Engine* owner)
    : database_(openEngineDatabase()), collator_(engine::collator()), runtime_(new sql::SqlRuntime(owner)) {
    sqlite3* db = sqliteHandle();
    if (sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr) != SQLITE_OK) {
        throw err::SqliteException(
            db, message(QT_TRANSLATE_NOOP("QObject", "Поддержка расширений %0"), "SQLITE"));
    }
    initialiseSpatialite();
    leaveBloomFiltersOut(db);
    sqlite3_trace_v2(
        db, SQLITE_TRACE_STMT,
        [](unsigned, void*, void*, void*) {
            geometry::beginInterruptibleWork();
            return 0;
        },
        nullptr);
    setUseGaiaCache(NoMemo);
    sqlite3_create_collation(db, "Locale", SQLITE_UTF16, this, &Internal::localeCollation);
    // The database holds its texts in UTF-8: without this form SQLite would convert both texts for every
    // comparison.
    sqlite3_create_collation(db, "Locale", SQLITE_UTF8, this, &Internal::localeCollationUtf8);
}

Engine::Internal::~Internal() = default;

void Engine::Internal::SpatialiteCleanUp::operator()(void* connection) const {
    spatialite_cleanup_ex(connection);
}

void Engine::Internal::initialiseSpatialite() {
    try {
        spatialiteConnection_.reset(spatialite_alloc_connection());
        spatialite_init_ex(sqliteHandle(), spatialiteConnection_.get(), 0);
        spatialite_set_silent_mode(spatialiteConnection_.get()); // GEOS would write to standard error
    } catch (...) {
        spatialiteConnection_.reset();
        throw err::SqliteException(sqliteHandle(),
                                   message(QT_TRANSLATE_NOOP("QObject", "Инициализация %0"), "spatialite"));
    }
}

sqlite3* Engine::Internal::sqliteHandle() const {
    const QSqlDriver* driver = database_.driver();
    const QVariant handle = driver ? driver->handle() : QVariant();
    return handle.isValid() ? *static_cast<sqlite3* const*>(handle.constData()) : nullptr;
}

std::shared_ptr<cs::CoordSystem> Engine::Internal::tableCS(const QString& tableName) {
    auto found = managements_.find(tableName);
    if (found == managements_.end()) {
        found = std::find_if(managements_.begin(), managements_.end(), [&tableName](const auto& entry) {
            return QString::compare(entry.first, tableName, Qt::CaseInsensitive) == 0;
        });
    }
    return found == managements_.end() ? nullptr : found->second->coordSystem();
}

int Engine::Internal::localeCollation(void* userData, int length1, const void* text1, int length2,
                                      const void* text2) {
    if (const auto* self = static_cast<const Internal*>(userData)) {
        return engine::collatorCompare(self->collator_, length1, text1, length2, text2);
    }
    return engine::collatorCompare(engine::collator(), length1, text1, length2, text2);
}

int Engine::Internal::localeCollationUtf8(void* userData, int length1, const void* text1, int length2,
                                          const void* text2) {
    auto* self = static_cast<Internal*>(userData);
    if (!self->localeOrder_) {
        self->localeOrder_ = std::make_unique<engine::LocaleOrder>(self->collator_);
    }
    return self->localeOrder_->compare({static_cast<const char*>(text1), static_cast<std::size_t>(length1)},
                                       {static_cast<const char*>(text2), static_cast<std::size_t>(length2)});
}

} // namespace orvane
