#include "host/postgres/PostgresSource.h"

#include "host/postgres/connection/Server.h"
#include "host/postgres/description/DatabaseReader.h"

#include <QCoreApplication>

#include <stdexcept>

namespace orvane::postgres {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::postgres)
};

} // namespace

bool isServerSource(const QString& source) {
    return isServerAddress(source);
}

QString titleOfSource(const QString& source) {
    try {
        const ServerAddress address = parseServerAddress(source);
        return address.table.isEmpty() ? address.title : address.title + QLatin1Char('|') + address.table;
    } catch (const std::runtime_error&) {
        return QStringLiteral("postgresql://");
    }
}

std::vector<std::shared_ptr<PostgresTable>> openServer(const QString& source) {
    const ServerAddress address = parseServerAddress(source);
    const auto server = std::make_shared<Server>(address);
    const auto edits = std::make_shared<PostgresTable::Edits>();
    std::vector<std::shared_ptr<PostgresTable>> tables;
    for (TableDescription& description : readDatabase(*server, address.table)) {
        const QString name = dp::DataObject::makeValidObjectName(QString::fromStdString(description.name));
        tables.push_back(std::make_shared<PostgresTable>(name, server, edits, std::move(description)));
    }
    if (tables.empty()) {
        throw std::runtime_error(
            (address.table.isEmpty()
                 ? Texts::tr("В базе «%1» нет таблиц, которые можно читать").arg(address.title)
                 : Texts::tr("В базе «%1» нет таблицы «%2», или её нельзя читать")
                       .arg(address.title, address.table))
                .toStdString());
    }
    return tables;
}

} // namespace orvane::postgres
