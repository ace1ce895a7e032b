#include "host/adaptor/module/VirtualTableModule.h"

#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/adaptor/module/TableEdit.h"
#include "host/adaptor/planning/BestIndex.h"
#include "host/adaptor/scanning/VirtualCursor.h"
#include "host/adaptor/tables/VirtualTable.h"

#include "platform/core/Core.h"
#include "platform/core/SqliteBarrier.h"
#include "platform/core/TypedSettings.h"
#include "platform/di/ServiceLocator.h"
#include "platform/dp/DataCatalog.h"
#include <orvane/Engine.h>

#include <QCoreApplication>
#include <QPointer>

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

// The callbacks of SQLite's virtual-table interface, under SQLite's names. They only unpack; the work is done
// by VirtualTable and VirtualCursor.

namespace orvane::adaptor {

namespace {

using err::barrier;

struct ModuleContext {
    /// What a virtual table shows. SQLite forgets its connection to every table when one is renamed or a
    /// transaction is rolled back, and asks for it again when it next needs the table, be it to drop one
    /// whose object is closed.
    struct Source {
        std::weak_ptr<dp::Table> table;
        std::shared_ptr<const dp::TableSchema> schema;
    };

    QPointer<Core> core;
    engine::EngineCache* cache;
    std::map<QString, Source> sources; ///< by the name of the virtual table, also one it had before

    Engine* engine() const {
        if (!knownEngine && core) {
            knownEngine = core->findService<Engine>();
        }
        return knownEngine;
    }

    mutable QPointer<Engine> knownEngine = {}; ///< asked for several times for each plan
};

/// A virtual table with what its callbacks need besides.
class ModuleTable : public VirtualTable {
public:
    ModuleTable(QString name, std::shared_ptr<dp::Table> source, const dp::TableSchema& schema,
                ModuleContext& context)
        : VirtualTable(std::move(name), std::move(source), schema, *context.cache, indexStores(context)),
          context_(context) {}

    /// A table that is dropped before the transaction ends takes its edits along.
    ~ModuleTable() override { endGroup(&dp::Table::rollbackEdits); }

    void announce() {
        if (Engine* engine = context_.engine()) {
            engine->registerManagement(std::make_unique<VirtualTableManagement>(*this));
        }
    }
    /// Leaves alone what another table has registered under the name: SQLite may connect a table anew before
    /// it lets go of the old connection.
    void withdraw() {
        if (registered(name()) == this) {
            context_.engine()->unRegisterManagement(name());
        }
    }
    VirtualTable* otherTable(const QString& other) const override {
        VirtualTable* const found = registered(other);
        return found && found->tableOrNull() ? found : nullptr;
    }
    void rename(const QString& newName) {
        withdraw();
        if (const auto known = context_.sources.find(name()); known != context_.sources.end()) {
            context_.sources[newName] = known->second;
        }
        setName(newName);
        announce();
    }
    /// The end of a scan: a closed table that nobody reads any longer can be dropped.
    void scanEnds() {
        if (Engine* engine = tableOrNull() || nRef > 0 ? nullptr : context_.engine()) {
            engine->settleTables();
        }
    }

    /// The group of edits of the transaction under way begins with its first edit: SQLite tells of no
    /// beginning where a table is made inside a transaction, but of the end of each.
    void beginGroup() {
        if (!edited_) {
            inTable(name(), [this] { table().beginEdits(); });
            edited_ = tableOrNull();
        }
    }
    void endGroup(void (dp::Table::*end)() noexcept) noexcept {
        if (const auto ended = std::exchange(edited_, nullptr)) {
            ((*ended).*end)();
        }
    }
    /// Runs an operation on a table with a group under way; its failures name the table.
    template<class Work>
    int inGroup(Work work) {
        if (edited_) {
            inTable(name(), [&] { work(*edited_); });
        }
        return SQLITE_OK;
    }

private:
    VirtualTable* registered(const QString& tableName) const {
        Engine* engine = context_.engine();
        const auto* management =
            engine ? dynamic_cast<VirtualTableManagement*>(engine->findManagement(tableName)) : nullptr;
        return management ? &management->table() : nullptr;
    }
    static AttributeIndexing::Stores indexStores(const ModuleContext& context) {
        const auto settings = serviceLocator().find<TypedSettings>();
        if (settings && settings->value(DefaultSettingsList::NoAttributeIndices).toBool()) {
            return nullptr;
        }
        return [&context](const std::shared_ptr<dp::Table>& table) -> engine::EngineIndices* {
            Engine* engine = context.engine();
            return engine ? engine->indices(table) : nullptr;
        };
    }

    ModuleContext& context_;
    std::shared_ptr<dp::Table> edited_; ///< in the group of edits under way, also when it is closed meanwhile
};

ModuleTable& tableOf(sqlite3_vtab* table) {
    return static_cast<ModuleTable&>(*table);
}

VirtualCursor& cursorOf(sqlite3_vtab_cursor* cursor) {
    return static_cast<VirtualCursor&>(*cursor);
}

void setMessage(char** message, const char* text) {
    sqlite3_free(*message);
    *message = sqlite3_mprintf("%s", text);
}

/// A module argument as EngineExtension wrote it: a bare text or a quoted SQL text.
QString unquoted(const char* argument) {
    QString text = QString::fromUtf8(argument);
    if (text.size() >= 2 && text.startsWith(QLatin1Char('\'')) && text.endsWith(QLatin1Char('\''))) {
        text = text.mid(1, text.size() - 2);
        text.replace(QLatin1String("''"), QLatin1String("'"));
    }
    return text;
}

/// The catalogue's table of a name; null when there is none.
std::shared_ptr<dp::Table> findTable(const ModuleContext& context, const QString& name) {
    const auto* catalog = context.core ? context.core->findService<dp::DataCatalog>() : nullptr;
    const auto object = catalog ? catalog->dataObject(name) : nullptr;
    return object ? std::dynamic_pointer_cast<dp::Table>(object->underlyingObject()) : nullptr;
}

bool isOpen(const ModuleContext& context, const dp::Table* table) {
    const auto* catalog = context.core ? context.core->findService<dp::DataCatalog>() : nullptr;
    const auto objects = catalog ? catalog->dataObjects() : QList<std::shared_ptr<dp::DataObject>>();
    return std::any_of(objects.begin(), objects.end(),
                       [table](const auto& object) { return object->underlyingObject().get() == table; });
}

int connect(sqlite3* database, ModuleContext& context, const QString& name, std::shared_ptr<dp::Table> source,
            const dp::TableSchema& schema, sqlite3_vtab** result, char** message) {
    auto table = std::make_unique<ModuleTable>(name, std::move(source), schema, context);
    if (const int code = sqlite3_declare_vtab(database, table->declaration().sql().c_str());
        code != SQLITE_OK) {
        setMessage(message, sqlite3_errmsg(database));
        return code;
    }
    table->announce();
    *result = table.release();
    return SQLITE_OK;
}

/// Shows the catalogue's table under the virtual table's own name, or under the name in the module arguments.
int xCreate(sqlite3* database, void* clientData, int argc, const char* const* argv, sqlite3_vtab** result,
            char** message) {
    return barrier(message, [&] {
        auto& context = *static_cast<ModuleContext*>(clientData);
        const QString name = QString::fromUtf8(argv[2]);
        auto source = findTable(context, name);
        if (!source && argc > 3) {
            source = findTable(context, unquoted(argv[3]));
        }
        if (!source) {
            throw std::runtime_error(QCoreApplication::translate("orvane::adaptor", "Нет открытой таблицы %0")
                                         .arg(name)
                                         .toStdString());
        }
        std::erase_if(context.sources, [](const auto& known) { return known.second.table.expired(); });
        const auto schema = source->schema();
        context.sources[name] = {source, schema};
        return connect(database, context, name, std::move(source), *schema, result, message);
    });
}

/// Always connects: a table that shows nothing could not even be dropped.
int xConnect(sqlite3* database, void* clientData, int, const char* const* argv, sqlite3_vtab** result,
             char** message) {
    return barrier(message, [&] {
        auto& context = *static_cast<ModuleContext*>(clientData);
        const QString name = QString::fromUtf8(argv[2]);
        ModuleContext::Source& known = context.sources[name];
        auto source = known.table.lock();
        if (!isOpen(context, source.get())) {
            source = nullptr;
        }
        if (source || !known.schema) {
            known.schema = source ? source->schema() : std::make_shared<dp::TableSchema>();
        }
        return connect(database, context, name, std::move(source), *known.schema, result, message);
    });
}

int xDisconnect(sqlite3_vtab* table) {
    const std::unique_ptr<ModuleTable> owned(&tableOf(table));
    return barrier(&table->zErrMsg, [&] {
        owned->withdraw();
        owned->endGroup(&dp::Table::rollbackEdits); // the table is dropped inside a transaction
        owned->detach();
        return SQLITE_OK;
    });
}

int xBestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
    return barrier(&table->zErrMsg,
                   [&] { return planScan(tableOf(table), *info) ? SQLITE_OK : SQLITE_CONSTRAINT; });
}

int xOpen(sqlite3_vtab* table, sqlite3_vtab_cursor** result) {
    return barrier(&table->zErrMsg, [&] {
        *result = new VirtualCursor(tableOf(table));
        return SQLITE_OK;
    });
}

int xClose(sqlite3_vtab_cursor* cursor) {
    ModuleTable& table = tableOf(cursor->pVtab);
    delete &cursorOf(cursor);
    return barrier(&table.zErrMsg, [&table] {
        table.scanEnds();
        return SQLITE_OK;
    });
}

int xNext(sqlite3_vtab_cursor* cursor) {
    return barrier(cursor, [&] { return cursorOf(cursor).next(); });
}

int xFilter(sqlite3_vtab_cursor* cursor, int, const char* planText, int argc, sqlite3_value** argv) {
    return barrier(cursor, [&] {
        const int code = cursorOf(cursor).filter(planText, {argv, static_cast<std::size_t>(argc)});
        return code != SQLITE_OK || cursorOf(cursor).atEnd() ? code : cursorOf(cursor).next();
    });
}

int xEof(sqlite3_vtab_cursor* cursor) {
    return cursorOf(cursor).atEnd();
}

int xColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
    return barrier(cursor, [&] {
        cursorOf(cursor).column(context, column);
        return SQLITE_OK;
    });
}

int xRowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* rowNumber) {
    return barrier(cursor, [&] {
        *rowNumber = cursorOf(cursor).rowNumber();
        return SQLITE_OK;
    });
}

/// Offers the relations whose first argument is the geometry column as constraints. Anything else stays the
/// function that it is.
int xFindFunction(sqlite3_vtab* table, int argc, const char* name,
                  void (**function)(sqlite3_context*, int, sqlite3_value**), void** userData) {
    const auto relation = argc == 2 ? spatialRelationOf(name) : std::nullopt;
    const ModuleTable& asked = tableOf(table);
    if (!relation || asked.declaration()
                             .columns()[static_cast<std::size_t>(asked.declaration().geometryColumn())]
                             .attribute < 0) {
        return 0;
    }
    const FunctionRecord* const record = findScalar(name, argc);
    if (!record) {
        return 0;
    }
    *function = record->scalar; // SQLite calls it wherever no scan takes the constraint over
    *userData = &asked.cache();
    return SQLITE_INDEX_CONSTRAINT_FUNCTION + static_cast<int>(*relation);
}

int xRename(sqlite3_vtab* table, const char* newName) {
    return barrier(&table->zErrMsg, [&] {
        tableOf(table).rename(QString::fromUtf8(newName));
        return SQLITE_OK;
    });
}

/// argv: the row number before (NULL for a new row), the row number after, then the values; a row number
/// alone deletes.
int xUpdate(sqlite3_vtab* table, int argc, sqlite3_value** argv, sqlite3_int64* rowNumber) {
    return barrier(&table->zErrMsg, [&] {
        TableEdit edit(tableOf(table));
        if (argc == 1) {
            tableOf(table).beginGroup();
            edit.remove(sqlite3_value_int64(argv[0]));
            return SQLITE_OK;
        }
        const std::span<sqlite3_value*> values(argv + 2, static_cast<std::size_t>(argc - 2));
        const bool isNew = sqlite3_value_type(argv[0]) == SQLITE_NULL;
        const bool assignsRowNumber = isNew ? sqlite3_value_type(argv[1]) != SQLITE_NULL
                                            : sqlite3_value_int64(argv[0]) != sqlite3_value_int64(argv[1]);
        if (assignsRowNumber) {
            throw dp::EditError(
                QCoreApplication::translate("orvane::adaptor", "Номера строк назначает таблица")
                    .toStdString());
        }
        tableOf(table).beginGroup();
        if (isNew) {
            *rowNumber = edit.insert(values);
        } else {
            edit.update(sqlite3_value_int64(argv[0]), values);
        }
        return SQLITE_OK;
    });
}

/// SQLite tells of the other steps of a transaction only where there is this one.
int xBegin(sqlite3_vtab*) {
    return SQLITE_OK;
}

/// The last step that may fail: what the others give back is nothing to SQLite.
int xSync(sqlite3_vtab* table) {
    return barrier(&table->zErrMsg,
                   [&] { return tableOf(table).inGroup([](dp::Table& edited) { edited.prepareEdits(); }); });
}

int xCommit(sqlite3_vtab* table) {
    tableOf(table).endGroup(&dp::Table::commitEdits);
    return SQLITE_OK;
}

int xRollback(sqlite3_vtab* table) {
    tableOf(table).endGroup(&dp::Table::rollbackEdits);
    return SQLITE_OK;
}

int xSavepoint(sqlite3_vtab* table, int number) {
    return barrier(&table->zErrMsg, [&] {
        return tableOf(table).inGroup([number](dp::Table& edited) { edited.setSavepoint(number); });
    });
}

int xRelease(sqlite3_vtab* table, int number) {
    return barrier(&table->zErrMsg, [&] {
        return tableOf(table).inGroup([number](dp::Table& edited) { edited.releaseSavepoint(number); });
    });
}

int xRollbackTo(sqlite3_vtab* table, int number) {
    return barrier(&table->zErrMsg, [&] {
        return tableOf(table).inGroup([number](dp::Table& edited) { edited.rollbackToSavepoint(number); });
    });
}

constexpr sqlite3_module tableModule = [] {
    sqlite3_module module{};
    module.iVersion = 2;
    module.xCreate = xCreate;
    module.xConnect = xConnect;
    module.xBestIndex = xBestIndex;
    module.xDisconnect = xDisconnect;
    module.xDestroy = xDisconnect;
    module.xOpen = xOpen;
    module.xClose = xClose;
    module.xFilter = xFilter;
    module.xNext = xNext;
    module.xEof = xEof;
    module.xColumn = xColumn;
    module.xRowid = xRowid;
    module.xFindFunction = xFindFunction;
    module.xUpdate = xUpdate;
    module.xBegin = xBegin;
    module.xSync = xSync;
    module.xCommit = xCommit;
    module.xRollback = xRollback;
    module.xRename = xRename;
    module.xSavepoint = xSavepoint;
    module.xRelease = xRelease;
    module.xRollbackTo = xRollbackTo;
    return module;
}();

} // namespace

int registerModule(sqlite3* database, const char* name, Core& core, engine::EngineCache& cache) {
    return sqlite3_create_module_v2(database, name, &tableModule, new ModuleContext{&core, &cache, {}},
                                    [](void* context) { delete static_cast<ModuleContext*>(context); });
}

} // namespace orvane::adaptor
