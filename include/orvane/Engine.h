#pragma once

#include "platform/sql/tree/FunctionInfo.h"
#include <orvane/engine/CaseInsensitiveLess.h>
#include <orvane/engine/Export.h>

#include <QObject>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <memory>
#include <set>
#include <string>

struct sqlite3;

namespace orvane {

class Core;
class VirtualTables;

namespace dp {
class Table;
}
namespace geometry {
class ResemblanceExtension;
}
namespace sql {
class ParseResult;
}
namespace engine {
class EngineCache;
class EngineIndices;
class SqliteStringBuilder;
class TableManagement;
} // namespace engine

/// The SQL engine service: one private in-memory database with SpatiaLite and the collation "Locale", in
/// which the tables of the data catalogue appear as virtual tables. Belongs to the thread that loaded it;
/// only cancelQuery may be called from another.
class ORVANE_ENGINE_EXPORT Engine : public QObject {
    Q_OBJECT
public:
    /// Installs a virtual-table module and SQL functions in the engine database. Returns 0, or a code and, if
    /// it likes, a text allocated by SQLite.
    using TableAdapterInit = int (*)(sqlite3* database, char** errorMessage, Core* core,
                                     engine::EngineCache* cache);

    enum CheckParseResults {
        ParseAsIs = 0,     ///< any statement is translated
        ExpressionOnly = 1 ///< only a value expression is
    };

    /// The engine service of the core, made and registered on first use. Throws std::runtime_error or
    /// err::SqliteException when the database cannot be set up; the next call tries again.
    static Engine* load(Core* core);

    explicit Engine(QObject* parent);
    ~Engine() override;

    /// A handle of the engine connection "ORVANEENGINE".
    QSqlDatabase engineDatabase() const;
    /// Lives as long as the engine.
    engine::EngineCache* cache() const;
    /// Hands an extension, not owned, to the cache: the plug-in manager calls this. Null is ignored.
    void registerExtension(geometry::ResemblanceExtension* extension);
    /// Forgets decoded geometries. What relations keep for a statement goes with the statement.
    void clearCache();

    /// Loads an SQLite extension library. Throws err::SqliteException naming the path, std::logic_error
    /// without database.
    void loadDatabaseModule(const char* path);
    /// Lets the table adaptor install itself. Throws err::SqliteException with the adaptor's text.
    void loadTableAdapterModule(Core* core, TableAdapterInit init);

    /// Lets statements call these functions: scalar, aggregate and table-valued ones, in any letter case.
    /// Without it a statement can call the dialect's functions (sqlFunctionSet) only, whatever else SQLite,
    /// SpatiaLite or a loaded module has registered; read the tables and change their rows; and neither make
    /// nor drop nor attach anything. For statements of the host's own see engine::OwnStatements.
    void allowFunctions(const QStringList& names);
    bool allowsFunction(const QString& name) const;
    /// What a statement wanted that was refused last, "Attach other.db" for instance: SQLite's own message is
    /// "not authorized". Empty when nothing was refused.
    QString refusedAction() const;

    /// The dialect's functions of the given kinds that the engine database has, as the dialect spells them.
    std::set<QString, engine::caseInsensitiveLess>
    functionSet(QFlags<sql::FunctionInfo::TypeMask> mask) const;
    /// The same in the set's order.
    QStringList functionList(QFlags<sql::FunctionInfo::TypeMask> mask) const;
    /// The dialect's functions of the given kinds, whether the database has them or not.
    sql::FunctionSet sqlFunctionSet(QFlags<sql::FunctionInfo::TypeMask> mask);
    /// The operators that the engine translates.
    sql::OperatorSet operatorList() const;

    /// Translates dialect text into the builder; true when the builder then holds a query. Errors stay in the
    /// builder, nothing is thrown.
    bool tryToTranslate(const std::string& text, engine::SqliteStringBuilder& builder,
                        CheckParseResults check) const;
    /// The same for a statement that is parsed already: for callers who need the tree or the place of a fault
    /// themselves.
    bool tryToTranslate(const sql::ParseResult& statement, engine::SqliteStringBuilder& builder,
                        CheckParseResults check) const;
    /// The SQLite text for dialect text (UTF-8), or the text itself when it cannot be translated; the reasons
    /// are logged.
    QString translate(const std::string& text) const;
    QString translate(const QString& text) const;

    /// Takes over a management under its table's name, in place of an earlier one; one without a name is
    /// discarded.
    void registerManagement(std::unique_ptr<engine::TableManagement> management);
    /// Destroys the management of exactly this name, if there is one.
    void unRegisterManagement(const QString& name);
    /// The management registered under exactly this name, null when there is none.
    engine::TableManagement* findManagement(const QString& name);
    /// Tells the management of exactly this name to let go of its table. It stays registered.
    void detachTable(const QString& name);

    /// The attribute index store of a table, by its exact name, made on first request and kept for the
    /// engine's life.
    engine::EngineIndices* indices(const std::shared_ptr<dp::Table>& table);
    /// Empties the table's index store, if there is one, and tells the table's management, if there is one.
    void clearIndices(const std::shared_ptr<dp::Table>& table);

    /// Interrupts whatever statement runs on the engine connection. Any thread.
    void cancelQuery();

    /// Lets the extensions drop closed tables, and make those that wait for their names, from the event loop:
    /// for a module that sees the last scan of a closed table end.
    void settleTables();

private:
    friend class EngineExtension;
    VirtualTables& virtualTables() const;

    class Internal;
    std::shared_ptr<Internal> internal_;
};

} // namespace orvane
