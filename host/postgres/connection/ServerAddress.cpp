#include "host/postgres/connection/ServerAddress.h"

#include "host/postgres/connection/Handles.h"

#include <QCoreApplication>

#include <cstring>
#include <stdexcept>

namespace orvane::postgres {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::postgres)
};

const QLatin1String& wordsPrefix() {
    static const QLatin1String prefix("PG:");
    return prefix;
}

/// Where the name of a table begins, -1 for none: behind the last "|" that is in no quoted value and, in a
/// URI, not before the host.
int tableMark(const QString& address, bool isUri) {
    const int mark = address.lastIndexOf(QLatin1Char('|'));
    const bool isWithinValue = isUri ? address.indexOf(QLatin1Char('@'), mark + 1) >= 0
                                     : address.left(mark + 1).count(QLatin1Char('\'')) % 2 == 1;
    return isWithinValue ? -1 : mark;
}

/// What libpq takes the address for, its defaults and environment included.
QString titleOf(PQconninfoOption* given, const std::string& connection) {
    QString host, port, database;
    for (const auto* option = given; option && option->keyword; ++option) {
        const QString value = QString::fromUtf8(option->val ? option->val : "");
        if (std::strcmp(option->keyword, "host") == 0) {
            host = value;
        } else if (std::strcmp(option->keyword, "port") == 0) {
            port = value;
        } else if (std::strcmp(option->keyword, "dbname") == 0) {
            database = value;
        } else if (std::strcmp(option->keyword, "service") == 0 && database.isEmpty()) {
            database = value;
        }
    }
    QString title = QStringLiteral("postgresql://") + host;
    if (!port.isEmpty()) {
        title += QLatin1Char(':') + port;
    }
    return connection.empty() ? title : title + QLatin1Char('/') + database;
}

} // namespace

bool isServerAddress(const QString& source) {
    return source.startsWith(QLatin1String("postgresql://")) ||
           source.startsWith(QLatin1String("postgres://")) ||
           source.startsWith(wordsPrefix(), Qt::CaseInsensitive);
}

ServerAddress parseServerAddress(const QString& source) {
    const bool isUri = !source.startsWith(wordsPrefix(), Qt::CaseInsensitive);
    const QString address = isUri ? source : source.mid(wordsPrefix().size());
    const int mark = tableMark(address, isUri);
    ServerAddress result;
    result.connection = (mark < 0 ? address : address.left(mark)).toStdString();
    result.table = mark < 0 ? QString() : address.mid(mark + 1);
    char* complaint = nullptr; // repeats what it does not understand, which may be a password
    const OptionsHandle options(PQconninfoParse(result.connection.c_str(), &complaint));
    PQfreemem(complaint);
    if (!options) {
        throw std::runtime_error(
            Texts::tr("Адрес базы PostgreSQL не разобрать; нужно «postgresql://узел:порт/база» "
                      "или «PG:host=узел port=порт dbname=база», особые знаки в нём как %XX или в ''")
                .toStdString());
    }
    result.title = titleOf(options.get(), result.connection);
    return result;
}

} // namespace orvane::postgres
