#pragma once

#include "host/postgres/connection/Handles.h"
#include "host/postgres/connection/ServerAddress.h"
#include "platform/work/Cancellation.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::postgres {

/// What the server refuses, or that it cannot be reached. The text is UTF-8 for the user and begins with the
/// server's title.
class ServerError : public std::runtime_error {
public:
    ServerError(const std::string& text, bool isLost) : std::runtime_error(text), isLost_(isLost) {}
    /// Whether the connection is gone, and with it its transaction.
    bool isLost() const { return isLost_; }

private:
    bool isLost_;
};

/// An argument as text; NULL where there is none. The statement names its type where the server cannot tell.
using Argument = std::optional<std::string>;

struct Command {
    std::string sql;
    std::vector<Argument> arguments = {};
};

/// One connection, used by one thread at a time. Waiting for the server ends with a cancellation, which
/// reaches the server and closes the connection. Everything throws ServerError and work::Cancelled.
class Connection {
public:
    /// Counts the requests of this and other connections in `requests`, which outlives them.
    Connection(const ServerAddress& address, std::atomic<std::int64_t>& requests,
               const work::Cancellation& cancellation);

    /// Sends commands as one request; their results come with receive(). What is still to be received from
    /// before is dropped. After a command that fails the others are not carried out.
    void send(std::span<const Command> commands, bool isBinary);
    /// The rows of the last command that has any, else the result of the first.
    Result receive(const work::Cancellation& cancellation);
    Result run(std::span<const Command> commands, const work::Cancellation& cancellation,
               bool isBinary = false) {
        send(commands, isBinary);
        return receive(cancellation);
    }
    Result run(const Command& command, const work::Cancellation& cancellation, bool isBinary = false) {
        return run({&command, 1}, cancellation, isBinary);
    }

    /// Ends what is under way; a server that is still at it costs the connection.
    void abandon();

    /// Cursors of the server's that were opened before may be gone, with the transaction that they are of.
    void forgetCursors() { ++generation_; }
    /// Changes with forgetCursors().
    int generation() const { return generation_; }

    /// Whether nothing more can come over the connection. Looks at it without a request.
    bool isLost();

private:
    void connect(const std::string& address, const work::Cancellation& cancellation);
    void dropResults();
    void wait(const work::Cancellation& cancellation);
    void cancel();
    [[noreturn]] void raiseLost();
    [[noreturn]] void raise(const PGresult* result);

    const std::string title_;
    std::atomic<std::int64_t>& requests_;
    ConnectionHandle handle_;
    bool isAwaiting_ = false;
    bool isClosed_ = false;
    int generation_ = 0;
};

} // namespace orvane::postgres
