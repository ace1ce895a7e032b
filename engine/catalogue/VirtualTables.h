#pragma once

#include <QObject>
#include <QSqlDatabase>
#include <QString>

#include <vector>

struct sqlite3;

namespace orvane {

class EngineExtension;

namespace dp {
class DataObject;
}

/// The virtual tables that the extensions of one engine have made of the catalogue's objects, those that are
/// still to be dropped, and the objects that wait for their name. What the extensions want and what the
/// database has can differ: SQLite drops no table that is read, and a transaction of the host's that is
/// rolled back takes the tables made in it away and brings those dropped in it back. While that may be so,
/// settle() is due after every statement that begins and every scan of a closed table that ends, from the
/// event loop.
class VirtualTables : public QObject {
    Q_OBJECT
public:
    struct Table {
        const EngineExtension* maker; ///< only compared, as the object is
        const dp::DataObject* object; ///< null for a closed table, which is to be dropped
        QString name;
        QString definition; ///< as the database keeps it; empty for an object that waits for its name
        bool isMade() const { return object && !definition.isEmpty(); }
        bool isWaiting() const { return object && definition.isEmpty(); }
    };

    VirtualTables(QSqlDatabase database, sqlite3* handle);

    /// The table of an open object, be it only waited for; null when there is none.
    const Table* find(const dp::DataObject* object) const;
    /// The table of that name made of an open object, letter case ignored.
    const Table* find(const QString& name) const;
    /// Whether an object can have a table of that name: no other object has it, and no closed table is left
    /// that cannot be dropped yet.
    bool isFree(const QString& name, const dp::DataObject* object);

    /// An object has a table of that name now.
    void made(const EngineExtension* maker, const dp::DataObject* object, const QString& name);
    /// An object is to have a table when its name is free.
    void wait(const EngineExtension* maker, const dp::DataObject* object);
    /// The table of an object has another name now.
    void renamed(const dp::DataObject* object, const QString& newName);
    /// Nobody wants the table of that name any more: it is dropped by whoever asks, or else when it can be.
    void close(const QString& name);
    void forget(const dp::DataObject* object);
    void forget(const EngineExtension* maker);
    /// The objects of an extension that wait.
    std::vector<const dp::DataObject*> waiting(const EngineExtension* maker) const;

    /// Makes the database agree with what is wanted, as far as it can be now.
    void settle();
    /// The same from the event loop, when anything is left to settle. Called for each statement.
    void settleSoon() {
        if (!tables_.empty() && isUnsettled_ && !isPosted_ && !isSettling_) {
            post();
        }
    }

Q_SIGNALS:
    /// Names have become free: extensions make the tables that wait.
    void namesFreed();

private:
    QString definitionOf(const QString& name) const;
    void noteChange();
    void post();
    bool dropClosed(const Table& closed);

    QSqlDatabase database_;
    sqlite3* handle_;
    std::vector<Table> tables_;
    bool isUnsettled_ = false;
    bool hasChangedInTransaction_ = false;
    bool isPosted_ = false;
    bool isSettling_ = false;
};

} // namespace orvane
