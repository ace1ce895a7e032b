#include "host/postgres/editing/EditTransaction.h"

#include "platform/dp/Table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>

namespace orvane::postgres {

namespace {

/// A server that was stopped while it committed is waited for so long.
constexpr int settleAttempts = 50;
constexpr std::chrono::milliseconds settlePause{100};

std::string savepointName(int number) {
    return "orvane_" + std::to_string(number);
}

} // namespace

EditTransaction::EditTransaction(std::shared_ptr<Server> server) : server_(std::move(server)) {
    try {
        const Command begin{"Begin Isolation Level Repeatable Read Read Write"};
        Result result;
        auto lease = std::make_shared<Server::Lease>(server_->start({&begin, 1}, result, {}));
        connection_ = std::shared_ptr<Connection>(lease, &**lease);
    } catch (const ServerError& error) {
        throw dp::EditError(error.what());
    }
}

void EditTransaction::requireTransaction() const {
    if (isEnded_ || connection_->isLost()) {
        throw dp::EditError(
            tr("%1: правки отменены, соединение с сервером прервано").arg(server_->title()).toStdString());
    }
}

void EditTransaction::execute(std::span<const Command> commands) {
    requireTransaction();
    try {
        connection_->run(commands, {});
    } catch (const ServerError& error) {
        throw dp::EditError(error.what());
    }
}

Result EditTransaction::run(const Command& command) {
    requireTransaction();
    try {
        return connection_->run(
            std::array{Command{"Savepoint orvane_row"}, command, Command{"Release Savepoint orvane_row"}},
            {});
    } catch (const ServerError& error) {
        if (!error.isLost()) {
            execute(std::array{Command{"Rollback To Savepoint orvane_row"},
                               Command{"Release Savepoint orvane_row"}});
        }
        throw dp::EditError(error.what());
    }
}

void EditTransaction::setSavepoint(int number) {
    if (isEnded_ || std::find(savepoints_.begin(), savepoints_.end(), number) != savepoints_.end()) {
        return;
    }
    execute(std::array{Command{"Savepoint " + savepointName(number)}});
    savepoints_.push_back(number);
}

void EditTransaction::releaseSavepoint(int number) {
    const auto found =
        std::find_if(savepoints_.begin(), savepoints_.end(), [number](int each) { return each >= number; });
    if (isEnded_ || found == savepoints_.end()) {
        return;
    }
    execute(std::array{Command{"Release Savepoint " + savepointName(*found)}});
    savepoints_.erase(found, savepoints_.end());
}

void EditTransaction::rollbackTo(int number) {
    if (isEnded_) {
        return;
    }
    connection_->forgetCursors();
    const auto found = std::find(savepoints_.begin(), savepoints_.end(), number);
    if (found == savepoints_.end()) {
        execute(std::array{Command{"Rollback"}, Command{"Begin Isolation Level Repeatable Read Read Write"}});
        savepoints_.clear();
        return;
    }
    execute(std::array{Command{"Rollback To Savepoint " + savepointName(number)}});
    savepoints_.erase(found + 1, savepoints_.end());
}

void EditTransaction::prepare() {
    if (isEnded_) {
        return;
    }
    requireTransaction();
    std::string transaction;
    try {
        const Result number =
            connection_->run({"Select pg_catalog.pg_current_xact_id_if_assigned()::text"}, {});
        transaction = PQgetvalue(number.get(), 0, 0);
        const Result result = connection_->run({"Commit"}, {});
        isEnded_ = true;
        if (std::strcmp(PQcmdStatus(result.get()), "COMMIT") != 0) {
            throw ServerError(tr("%1: сервер отменил правки").arg(server_->title()).toStdString(), false);
        }
    } catch (const ServerError& error) {
        isEnded_ = true;
        if (!error.isLost()) {
            connection_->send(std::array{Command{"Rollback"}}, false);
        }
        settle(transaction, error);
    }
    end();
}

void EditTransaction::end() noexcept {
    isEnded_ = true;
    if (connection_) {
        connection_->forgetCursors();
    }
    connection_.reset();
    server_->forgetRevision();
}

/// Returns where the server has committed the transaction all the same.
void EditTransaction::settle(const std::string& transaction, const ServerError& failure) {
    end();
    if (!failure.isLost() || transaction.empty()) {
        throw dp::EditError(failure.what());
    }
    for (int i = 0; i < settleAttempts; ++i) {
        try {
            const Result status =
                server_->ask({"Select Coalesce(pg_catalog.pg_xact_status($1::xid8), '')", {transaction}});
            const std::string outcome = PQgetvalue(status.get(), 0, 0);
            if (outcome == "committed") {
                return;
            }
            if (outcome == "aborted") {
                throw dp::EditError(failure.what());
            }
        } catch (const ServerError&) {
            // The server may come back.
        }
        std::this_thread::sleep_for(settlePause);
    }
    throw dp::EditError(
        tr("%1: соединение прервано, пока сервер сохранял правки; сохранены ли они, неизвестно")
            .arg(server_->title())
            .toStdString());
}

void EditTransaction::rollback() noexcept {
    if (std::exchange(isEnded_, true)) {
        return;
    }
    try {
        if (!connection_->isLost()) {
            connection_->run({"Rollback"}, {});
        }
    } catch (const std::exception&) {
        // A lost connection takes its transaction along.
    }
    end();
}

} // namespace orvane::postgres
