#include "host/postgres/TestServer.h"

#include <gtest/gtest.h>

#include <libpq-fe.h>

#include <QDir>

#include <thread>

#include <unistd.h>

namespace orvane::testing {

namespace {

/// The shell that keeps the server: whatever ends this program closes its input.
constexpr const char* keeper = R"(
set -eu
programs=$1
directory=$(mktemp -d /tmp/orvane-postgres-XXXXXX)
server=
trap 'stop; rm -rf "$directory"' EXIT
stop() { if [ -n "$server" ]; then kill -QUIT "$server" || true; wait "$server" || true; server=; fi; }
trap '' INT TERM HUP
"$programs/initdb" -D "$directory/data" -A trust -U postgres -E UTF8 --locale=C.UTF-8 -N >"$directory/log" 2>&1
echo "$directory"
while read -r word; do
    case $word in
    start) setpriv --pdeathsig QUIT "$programs/postgres" -D "$directory/data" -k "$directory" -c listen_addresses= -F <"$directory/log" >>"$directory/log" 2>&1 & server=$! ;;
    kill) stop; echo killed ;;
    esac
done
stop
)";

QString newestPrograms() {
    const QDir versions(QStringLiteral("/usr/lib/postgresql"));
    QString newest;
    for (const QString& version : versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString programs = versions.filePath(version) + QStringLiteral("/bin");
        if (QFileInfo::exists(programs + QStringLiteral("/initdb"))) {
            newest = programs;
        }
    }
    return newest;
}

} // namespace

TestServer* TestServer::instance() {
    static TestServer server;
    return server.isReady_ ? &server : nullptr;
}

TestServer::TestServer() {
    const QString programs = newestPrograms();
    if (programs.isEmpty()) {
        return;
    }
    QStringList words;
    if (::geteuid() == 0) { // as which the server refuses to run
        words << QStringLiteral("setpriv") << QStringLiteral("--reuid=postgres")
              << QStringLiteral("--regid=postgres") << QStringLiteral("--clear-groups");
    }
    words << QStringLiteral("sh") << QStringLiteral("-c") << QString::fromLatin1(keeper)
          << QStringLiteral("keeper") << programs;
    process_.setWorkingDirectory(QStringLiteral("/"));
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(words.takeFirst(), words);
    for (int i = 0; i < 60 && !process_.canReadLine(); ++i) {
        process_.waitForReadyRead(1000);
    }
    directory_ = QString::fromUtf8(process_.readLine()).trimmed();
    isReady_ = !directory_.isEmpty();
    EXPECT_TRUE(isReady_) << "the server's directory was not made";
    if (isReady_) {
        start();
    }
}

TestServer::~TestServer() {
    process_.closeWriteChannel();
    process_.waitForFinished();
}

void TestServer::command(const char* text) {
    process_.write(text);
    process_.write("\n");
    process_.waitForBytesWritten();
}

void TestServer::start() {
    command("start");
    for (int i = 0; i < 600; ++i) {
        if (PQping(connection().c_str()) == PQPING_OK) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ADD_FAILURE() << "the server does not start";
}

void TestServer::kill() {
    command("kill");
    EXPECT_TRUE(process_.canReadLine() || process_.waitForReadyRead());
    process_.readLine();
}

std::string TestServer::connection() const {
    return "host=" + directory_.toStdString() +
           " user=postgres dbname=postgres options='-c client_min_messages=warning'";
}

QString TestServer::source() const {
    return QStringLiteral("postgresql://postgres@/postgres?host=") + directory_;
}

std::string TestServer::sql(const std::string& statements) const {
    PGconn* const connection = PQconnectdb(this->connection().c_str());
    PGresult* const result = PQexec(connection, statements.c_str());
    const auto status = PQresultStatus(result);
    EXPECT_TRUE(status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK)
        << PQerrorMessage(connection) << statements;
    std::string text;
    for (int row = 0; row < PQntuples(result); ++row) {
        text += row > 0 ? "\n" : "";
        for (int column = 0; column < PQnfields(result); ++column) {
            text += (column > 0 ? "|" : "") +
                    std::string(PQgetisnull(result, row, column) ? "NULL" : PQgetvalue(result, row, column));
        }
    }
    PQclear(result);
    PQfinish(connection);
    return text;
}

std::string TestServer::activity() const {
    return sql("Select query From pg_stat_activity Where state = 'active' And pid <> pg_backend_pid() And "
               "backend_type = 'client backend'");
}

} // namespace orvane::testing
