#pragma once

#include "host/postgres/connection/Connection.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

namespace orvane::postgres {

/// A database, with the connections to it that wait for their next use. Shared by its tables and their
/// cursors. Any thread may take a connection.
class Server : public std::enable_shared_from_this<Server> {
public:
    explicit Server(ServerAddress address) : address_(std::move(address)) {}

    const QString& title() const { return address_.title; }
    /// Requests sent so far: for who wants to know what a query costs.
    std::int64_t requests() const { return requests_; }

    /// A connection, given back when the last owner lets go of it.
    class Lease {
    public:
        Lease() = default;
        Lease(std::shared_ptr<Server> server, std::unique_ptr<Connection> connection)
            : server_(std::move(server)), connection_(std::move(connection)) {}
        Lease(Lease&&) = default;
        Lease& operator=(Lease&& other) noexcept {
            release();
            server_ = std::move(other.server_);
            connection_ = std::move(other.connection_);
            return *this;
        }
        ~Lease() { release(); }

        Connection* operator->() const { return connection_.get(); }
        Connection& operator*() const { return *connection_; }
        explicit operator bool() const { return connection_ != nullptr; }
        void release() {
            if (connection_) {
                server_->giveBack(std::move(connection_));
            }
        }

    private:
        std::shared_ptr<Server> server_;
        std::unique_ptr<Connection> connection_;
    };

    /// A connection that has carried out the commands. One that waited for its use and turns out to be lost
    /// is replaced once: they have to be such as may be repeated.
    Lease start(std::span<const Command> commands, Result& result, const work::Cancellation& cancellation,
                bool isBinary = false);
    /// The result of one command that reads.
    Result ask(const Command& command, const work::Cancellation& cancellation = {});
    /// A new connection.
    Lease connect(const work::Cancellation& cancellation);

    /// A number that changes when rows of the database may have changed, a second later at the latest. No
    /// transaction that writes can go by unseen: each moves the server's snapshot. 0 while the server cannot
    /// be asked.
    std::uint64_t revision();
    /// Lets the next revision() ask the server.
    void forgetRevision();

private:
    static Result run(Connection& connection, std::span<const Command> commands,
                      const work::Cancellation& cancellation, bool isBinary);
    void giveBack(std::unique_ptr<Connection> connection);
    std::unique_ptr<Connection> takeIdle();

    const ServerAddress address_;
    std::atomic<std::int64_t> requests_ = 0;
    std::mutex mutex_; ///< of what follows
    std::vector<std::unique_ptr<Connection>> idle_;
    std::string snapshot_;
    std::uint64_t revision_ = 0;
    std::chrono::steady_clock::time_point lookAgain_;
};

} // namespace orvane::postgres
