#include "engine/service/EngineInternal.h"

#include "platform/core/SqliteException.h"
#include "platform/dp/SqliteStatement.h"
#include "platform/geometry/forms/GeosInterrupt.h"
#include "platform/sql/parsing/SqlRuntime.h"
#include "platform/utils/Quoting.h"
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
    // That of an engine before, which was destroyed with its core.
    QSqlDatabase::removeDatabase(QLatin1String(connectionName));
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

/// Not by Qt's classes, which may be gone when the engine ends with the process.
QStringList firstColumn(sqlite3* database, const QString& sql) {
    QStringList texts;
    dp::SqliteStatement statement(database, sql, QString());
    while (statement.next()) {
        texts << statement.text(0);
    }
    return texts;
}

/// Bytes of a text or a blob.
constexpr int longestValue = 256 << 20;

std::string_view view(const void* text, int length) {
    return {static_cast<const char*>(text), static_cast<std::size_t>(length)};
}

/// The order of two texts by `compare`; by their bytes where that fails for want of memory: a collation has
/// no way to report it.
template<class Compare>
int ordered(std::string_view a, std::string_view b, Compare compare) noexcept {
    try {
        return compare();
    } catch (...) {
        return a.compare(b);
    }
}

} // namespace

Engine::Internal::Internal(Engine* owner)
    : database_(openEngineDatabase()), collator_(engine::collator()), runtime_(new sql::SqlRuntime(owner)) {
    sqlite3* db = sqliteHandle();
    if (sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr) != SQLITE_OK) {
        throw err::SqliteException(
            db, message(QT_TRANSLATE_NOOP("QObject", "Поддержка расширений %0"), "SQLITE"));
    }
    // Less than SQLite's own bound, since a text that is being made cannot be cancelled.
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, longestValue);
    initialiseSpatialite();
    leaveBloomFiltersOut(db);
    permissions_ = std::make_unique<Permissions>(db);
    virtualTables_ = std::make_unique<VirtualTables>(database_, db);
    sqlite3_trace_v2(
        db, SQLITE_TRACE_STMT,
        [](unsigned, void* tables, void*, void*) {
            geometry::beginInterruptibleWork();
            static_cast<VirtualTables*>(tables)->settleSoon();
            return 0;
        },
        virtualTables_.get());
    setUseGaiaCache(NoMemo);
    registerCollation(this);
}

Engine::Internal::~Internal() {
    spatialiteConnection_.reset();
}

void Engine::Internal::letGoOfConnection() {
    sqlite3* db = sqliteHandle();
    if (!db) {
        return; // somebody has removed the connection
    }
    permissions_->letGo();
    for (sqlite3_stmt* each = sqlite3_next_stmt(db, nullptr); each; each = sqlite3_next_stmt(db, each)) {
        sqlite3_reset(each);
    }
    if (!sqlite3_get_autocommit(db)) {
        sqlite3_exec(db, "Rollback", nullptr, nullptr, nullptr);
    }
    for (const QString& name : firstColumn(
             db, QStringLiteral("Select name From sqlite_master Where type = 'table' And rootpage = 0"))) {
        const QByteArray sql = "Drop Table " + utils::sqlIdentifier(name).toUtf8();
        sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr);
    }
    for (const QString& function :
         firstColumn(db, QStringLiteral("Select Distinct name || ' ' || narg From pragma_function_list "
                                        "Where Not builtin"))) {
        const int blank = function.lastIndexOf(QLatin1Char(' '));
        for (const int encoding : {SQLITE_UTF8, SQLITE_UTF16LE, SQLITE_UTF16BE}) {
            sqlite3_create_function(db, function.left(blank).toUtf8().constData(),
                                    function.mid(blank + 1).toInt(), encoding, nullptr, nullptr, nullptr,
                                    nullptr);
        }
    }
    sqlite3_drop_modules(db, nullptr);
    sqlite3_trace_v2(db, 0, nullptr, nullptr);
    registerCollation(nullptr);
}

void Engine::Internal::registerCollation(Internal* userData) {
    sqlite3* db = sqliteHandle();
    sqlite3_create_collation(db, "Locale", SQLITE_UTF16, userData, &Internal::localeCollation);
    // The database holds its texts in UTF-8: without this form SQLite would convert both texts for every
    // comparison.
    sqlite3_create_collation(db, "Locale", SQLITE_UTF8, userData, &Internal::localeCollationUtf8);
}

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
    const auto* self = static_cast<const Internal*>(userData);
    return ordered(view(text1, length1), view(text2, length2), [&] {
        return engine::collatorCompare(self ? self->collator_ : engine::collator(), length1, text1, length2,
                                       text2);
    });
}

int Engine::Internal::localeCollationUtf8(void* userData, int length1, const void* text1, int length2,
                                          const void* text2) {
    auto* self = static_cast<Internal*>(userData);
    const std::string_view a = view(text1, length1);
    const std::string_view b = view(text2, length2);
    return ordered(a, b, [&] {
        if (!self) {
            return engine::LocaleOrder::current()->compare(a, b);
        }
        if (!self->localeOrder_) {
            self->localeOrder_ = std::make_unique<engine::LocaleOrder>(self->collator_);
        }
        return self->localeOrder_->compare(a, b);
    });
}

} // namespace orvane
