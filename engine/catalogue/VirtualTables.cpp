#include "engine/catalogue/VirtualTables.h"

#include "platform/utils/Quoting.h"
#include <orvane/engine/OwnStatements.h>

#include <QScopedValueRollback>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>

#include <algorithm>

namespace orvane {

namespace {

bool isSameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

VirtualTables::VirtualTables(QSqlDatabase database, sqlite3* handle)
    : database_(std::move(database)), handle_(handle) {}

const VirtualTables::Table* VirtualTables::find(const dp::DataObject* object) const {
    const auto found = std::find_if(tables_.begin(), tables_.end(),
                                    [object](const Table& table) { return table.object == object; });
    return !object || found == tables_.end() ? nullptr : &*found;
}

const VirtualTables::Table* VirtualTables::find(const QString& name) const {
    const auto found = std::find_if(tables_.begin(), tables_.end(), [&name](const Table& table) {
        return table.isMade() && isSameName(table.name, name);
    });
    return found == tables_.end() ? nullptr : &*found;
}

bool VirtualTables::isFree(const QString& name, const dp::DataObject* object) {
    if (const Table* holder = find(name)) {
        return holder->object == object;
    }
    return std::all_of(tables_.begin(), tables_.end(), [&](const Table& table) {
        return table.object || !isSameName(table.name, name) || dropClosed(table);
    });
}

void VirtualTables::made(const EngineExtension* maker, const dp::DataObject* object, const QString& name) {
    forget(object);
    tables_.push_back({maker, object, name, definitionOf(name)});
    noteChange();
}

void VirtualTables::wait(const EngineExtension* maker, const dp::DataObject* object) {
    forget(object);
    tables_.push_back({maker, object, QString(), QString()});
    isUnsettled_ = true;
}

void VirtualTables::renamed(const dp::DataObject* object, const QString& newName) {
    Table table = *find(object);
    table.object = nullptr; // a rollback would bring it back
    tables_.push_back(table);
    made(table.maker, object, newName);
}

void VirtualTables::close(const QString& name) {
    tables_.erase(std::remove_if(
                      tables_.begin(), tables_.end(),
                      [&name](const Table& table) { return table.isMade() && isSameName(table.name, name); }),
                  tables_.end());
    if (const QString definition = definitionOf(name); !definition.isEmpty()) {
        tables_.push_back({nullptr, nullptr, name, definition});
        noteChange();
    }
}

void VirtualTables::forget(const dp::DataObject* object) {
    tables_.erase(std::remove_if(tables_.begin(), tables_.end(),
                                 [object](const Table& table) { return object && table.object == object; }),
                  tables_.end());
}

void VirtualTables::forget(const EngineExtension* maker) {
    tables_.erase(
        std::remove_if(tables_.begin(), tables_.end(),
                       [maker](const Table& table) { return table.object && table.maker == maker; }),
        tables_.end());
}

std::vector<const dp::DataObject*> VirtualTables::waiting(const EngineExtension* maker) const {
    std::vector<const dp::DataObject*> objects;
    for (const Table& table : tables_) {
        if (table.maker == maker && table.isWaiting()) {
            objects.push_back(table.object);
        }
    }
    return objects;
}

void VirtualTables::settle() {
    isPosted_ = false;
    if (isSettling_) {
        return;
    }
    const QScopedValueRollback<bool> settling(isSettling_, true);
    const bool isInTransaction = !sqlite3_get_autocommit(handle_);
    if (hasChangedInTransaction_) {
        for (Table& table : tables_) {
            if (table.isMade() && definitionOf(table.name) != table.definition) {
                table.definition.clear();
            }
        }
    }
    tables_.erase(std::remove_if(tables_.begin(), tables_.end(),
                                 [&](const Table& table) {
                                     return !table.object && dropClosed(table) && !isInTransaction;
                                 }),
                  tables_.end());
    const auto numWaiting = [this] {
        return std::count_if(tables_.begin(), tables_.end(),
                             [](const Table& each) { return each.isWaiting(); });
    };
    std::ptrdiff_t before = 0;
    do { // what one of them leaves, another may have been waiting for
        before = numWaiting();
        if (before > 0) {
            Q_EMIT namesFreed();
        }
    } while (numWaiting() < before);
    hasChangedInTransaction_ = hasChangedInTransaction_ && isInTransaction;
    isUnsettled_ = hasChangedInTransaction_ || std::any_of(tables_.begin(), tables_.end(),
                                                           [](const Table& each) { return !each.isMade(); });
}

QString VirtualTables::definitionOf(const QString& name) const {
    QSqlQuery query(database_);
    query.prepare(
        QStringLiteral("Select sql From sqlite_master Where type = 'table' And name = ? Collate NoCase"));
    query.addBindValue(name);
    return query.exec() && query.next() ? query.value(0).toString() : QString();
}

void VirtualTables::noteChange() {
    hasChangedInTransaction_ = hasChangedInTransaction_ || !sqlite3_get_autocommit(handle_);
    isUnsettled_ = true;
}

void VirtualTables::post() {
    isPosted_ = true;
    QMetaObject::invokeMethod(this, &VirtualTables::settle, Qt::QueuedConnection);
}

/// False when the closed table is read, and cannot be dropped yet.
bool VirtualTables::dropClosed(const Table& closed) {
    if (find(closed.name) || definitionOf(closed.name) != closed.definition) {
        return true;
    }
    const engine::OwnStatements own;
    QSqlQuery query(database_);
    constexpr int primaryCode = 0xFF; // without what SQLite adds to tell one lock from another
    return query.exec(QStringLiteral("Drop Table %0").arg(utils::sqlIdentifier(closed.name))) ||
           (query.lastError().nativeErrorCode().toInt() & primaryCode) != SQLITE_LOCKED;
}

} // namespace orvane
