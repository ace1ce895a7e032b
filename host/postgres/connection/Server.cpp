#include "host/postgres/connection/Server.h"

#include <utility>

namespace orvane::postgres {

namespace {

/// Connections that are kept for their next use.
constexpr std::size_t mostIdle = 4;
/// Between two looks at what others have changed.
constexpr std::chrono::seconds staleness{1};

} // namespace

std::unique_ptr<Connection> Server::takeIdle() {
    const std::lock_guard lock(mutex_);
    while (!idle_.empty()) {
        auto connection = std::move(idle_.back());
        idle_.pop_back();
        if (!connection->isLost()) {
            return connection;
        }
    }
    return nullptr;
}

void Server::giveBack(std::unique_ptr<Connection> connection) {
    const std::lock_guard lock(mutex_);
    if (connection->isLost()) {
        idle_.clear(); // most likely the others are lost as well
    } else if (idle_.size() < mostIdle) {
        idle_.push_back(std::move(connection));
    }
}

Server::Lease Server::connect(const work::Cancellation& cancellation) {
    return {shared_from_this(), std::make_unique<Connection>(address_, requests_, cancellation)};
}

/// What fails leaves no transaction behind.
Result Server::run(Connection& connection, std::span<const Command> commands,
                   const work::Cancellation& cancellation, bool isBinary) {
    try {
        return connection.run(commands, cancellation, isBinary);
    } catch (const ServerError& error) {
        if (!error.isLost()) {
            const Command rollback{"Rollback"};
            connection.send({&rollback, 1}, false);
        }
        throw;
    }
}

Server::Lease Server::start(std::span<const Command> commands, Result& result,
                            const work::Cancellation& cancellation, bool isBinary) {
    if (Lease lease(shared_from_this(), takeIdle()); lease) {
        try {
            result = run(*lease, commands, cancellation, isBinary);
            return lease;
        } catch (const ServerError& error) {
            if (!error.isLost()) {
                throw;
            }
        }
    }
    Lease lease = connect(cancellation);
    result = run(*lease, commands, cancellation, isBinary);
    return lease;
}

Result Server::ask(const Command& command, const work::Cancellation& cancellation) {
    Result result;
    start({&command, 1}, result, cancellation);
    return result;
}

std::uint64_t Server::revision() {
    const auto now = std::chrono::steady_clock::now();
    {
        const std::lock_guard lock(mutex_);
        if (now < lookAgain_) {
            return revision_;
        }
    }
    std::string snapshot;
    try {
        // The oldest transaction that still reads does not matter: only those that may write have numbers.
        const Result result = ask({"Select pg_catalog.pg_current_snapshot()::text"});
        snapshot = PQgetvalue(result.get(), 0, 0);
    } catch (const ServerError&) {
        snapshot.clear(); // who reads the rows is told
    }
    const std::lock_guard lock(mutex_);
    if (snapshot.empty() || snapshot != snapshot_) {
        ++revision_;
        snapshot_ = std::move(snapshot);
    }
    lookAgain_ = std::chrono::steady_clock::now() + staleness;
    return revision_;
}

void Server::forgetRevision() {
    const std::lock_guard lock(mutex_);
    lookAgain_ = {};
}

} // namespace orvane::postgres
