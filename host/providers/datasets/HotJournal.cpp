#include "host/providers/datasets/HotJournal.h"

#include <QCoreApplication>
#include <QFile>

#include <sqlite3.h>

#include <stdexcept>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::HotJournal)
};

/// How long another process may take to roll the same file back.
constexpr int patience = 5000; // milliseconds

bool startsWith(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(bytes.size()) == bytes;
}

/// Whether there is a journal with something in it. One of a transaction over several files is not for us:
/// it names a file that would be removed, whatever that is.
bool hasJournal(const QString& path) {
    static const QByteArray mark("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7"); // of SQLite's file format
    QFile journal(path + QStringLiteral("-journal"));
    if (!startsWith(journal.fileName(), mark) || !journal.open(QIODevice::ReadOnly)) {
        return false;
    }
    journal.seek(journal.size() - mark.size());
    return journal.read(mark.size()) != mark;
}

} // namespace

void rollBackDatabase(const QString& path) {
    if (!hasJournal(path) || !startsWith(path, QByteArray("SQLite format 3", 16))) {
        return;
    }
    sqlite3* database = nullptr;
    int code = sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READWRITE, nullptr);
    if (code == SQLITE_OK) {
        sqlite3_busy_timeout(database, patience);
        code = sqlite3_exec(database, "PRAGMA schema_version", nullptr, nullptr, nullptr);
    }
    const QString reason = QString::fromUtf8(sqlite3_errmsg(database));
    sqlite3_close(database);
    if (code != SQLITE_OK) {
        throw std::runtime_error(
            Texts::tr("«%1»: прерванную запись не удалось отменить: %2").arg(path, reason).toStdString());
    }
}

} // namespace orvane::files
