#include "host/desk/query/QueryHistory.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace orvane::desk {

namespace {

constexpr int mostQueries = 500;

} // namespace

QueryHistory::QueryHistory(QString path) : path_(std::move(path)) {
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isArray()) {
        file.close();
        const QString kept = path_ + QStringLiteral(".bad");
        QFile::remove(kept);
        QFile::rename(path_, kept);
        return;
    }
    for (const QJsonValue& query : document.array()) {
        if (query.isString()) {
            queries_ += query.toString();
        }
    }
}

bool QueryHistory::add(const QString& query) {
    queries_.removeAll(query);
    queries_ += query;
    while (queries_.size() > mostQueries) {
        queries_.removeFirst();
    }
    QDir().mkpath(QFileInfo(path_).path());
    QSaveFile file(path_);
    return file.open(QIODevice::WriteOnly) &&
           file.write(QJsonDocument(QJsonArray::fromStringList(queries_)).toJson()) >= 0 && file.commit();
}

} // namespace orvane::desk
