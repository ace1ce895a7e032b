#include "host/postgres/connection/Connection.h"

#include <QCoreApplication>

#include <poll.h>

#include <chrono>
#include <cstring>

namespace orvane::postgres {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::postgres)
};

/// Between two looks at the cancellation.
constexpr int waitMilliseconds = 20;
/// A server that does not answer for so long is none, unless the address says otherwise.
constexpr std::chrono::seconds longestConnecting{30};

/// What the session's texts and plans have to be like, whatever the server's or the role's own settings.
constexpr const char* sessionSettings =
    "Set standard_conforming_strings = on; Set DateStyle = 'ISO, YMD'; Set IntervalStyle = 'postgres'; "
    "Set extra_float_digits = 1; Set cursor_tuple_fraction = 1; Set synchronize_seqscans = off";

std::string trimmed(const char* text) {
    return QString::fromUtf8(text).simplified().toStdString();
}

bool pollFor(int socket, bool isWriting) {
    pollfd waited{socket, static_cast<short>(isWriting ? POLLOUT : POLLIN), 0};
    return poll(&waited, 1, waitMilliseconds) > 0;
}

std::chrono::steady_clock::time_point connectingDeadline(PGconn* connection) {
    std::chrono::seconds seconds = longestConnecting;
    const OptionsHandle options(PQconninfo(connection));
    for (const auto* option = options.get(); option && option->keyword; ++option) {
        if (std::strcmp(option->keyword, "connect_timeout") == 0 && option->val && *option->val) {
            const int wanted = QByteArray(option->val).toInt();
            seconds = wanted > 0 ? std::chrono::seconds(wanted) : seconds;
        }
    }
    return std::chrono::steady_clock::now() + seconds;
}

} // namespace

Connection::Connection(const ServerAddress& address, std::atomic<std::int64_t>& requests,
                       const work::Cancellation& cancellation)
    : title_(address.title.toStdString()), requests_(requests) {
    connect(address.connection, cancellation);
    Result settings(PQexec(handle_.get(), sessionSettings));
    if (PQresultStatus(settings.get()) != PGRES_COMMAND_OK) {
        raise(settings.get());
    }
}

void Connection::connect(const std::string& address, const work::Cancellation& cancellation) {
    const char* const keys[] = {"dbname", "client_encoding", "fallback_application_name", nullptr};
    const char* const values[] = {address.c_str(), "UTF8", "orvane", nullptr};
    handle_.reset(PQconnectStartParams(keys, values, 1));
    if (!handle_) {
        throw std::bad_alloc();
    }
    PQsetNoticeProcessor(
        handle_.get(), [](void*, const char*) {}, nullptr); // else they are written to standard error
    const auto deadline = connectingDeadline(handle_.get());
    auto state = PQstatus(handle_.get()) == CONNECTION_BAD ? PGRES_POLLING_FAILED : PGRES_POLLING_WRITING;
    while (state != PGRES_POLLING_OK && state != PGRES_POLLING_FAILED) {
        cancellation.check();
        if (std::chrono::steady_clock::now() > deadline) {
            throw ServerError(
                Texts::tr("%1: сервер не отвечает").arg(QString::fromStdString(title_)).toStdString(), true);
        }
        if (pollFor(PQsocket(handle_.get()), state == PGRES_POLLING_WRITING)) {
            state = PQconnectPoll(handle_.get());
        }
    }
    if (state == PGRES_POLLING_FAILED) {
        raiseLost();
    }
}

void Connection::dropResults() {
    try {
        if (isAwaiting_) {
            receive(work::Cancellation());
        }
    } catch (const ServerError& error) {
        if (error.isLost()) {
            throw;
        }
    }
}

void Connection::send(std::span<const Command> commands, bool isBinary) {
    dropResults();
    if (isClosed_) {
        raiseLost();
    }
    ++requests_;
    bool isSent = PQenterPipelineMode(handle_.get()) != 0;
    for (const Command& command : commands) {
        std::vector<const char*> values;
        values.reserve(command.arguments.size());
        for (const Argument& argument : command.arguments) {
            values.push_back(argument ? argument->c_str() : nullptr);
        }
        isSent =
            isSent && PQsendQueryParams(handle_.get(), command.sql.c_str(), static_cast<int>(values.size()),
                                        nullptr, values.data(), nullptr, nullptr, isBinary) != 0;
    }
    if (!isSent || !PQpipelineSync(handle_.get())) {
        raiseLost();
    }
    isAwaiting_ = true;
}

Result Connection::receive(const work::Cancellation& cancellation) {
    Result last;
    Result failed;
    for (bool isDone = false; !isDone;) {
        wait(cancellation);
        Result result(PQgetResult(handle_.get()));
        if (!result) {
            if (PQstatus(handle_.get()) == CONNECTION_BAD) {
                raiseLost();
            }
            continue; // the end of one command's results
        }
        switch (PQresultStatus(result.get())) {
        case PGRES_PIPELINE_SYNC: isDone = true; break;
        case PGRES_PIPELINE_ABORTED: break;
        case PGRES_COMMAND_OK: last = last ? std::move(last) : std::move(result); break;
        case PGRES_TUPLES_OK: last = std::move(result); break;
        default: failed = failed ? std::move(failed) : std::move(result);
        }
    }
    isAwaiting_ = false;
    PQexitPipelineMode(handle_.get());
    if (failed) {
        raise(failed.get());
    }
    return last;
}

void Connection::wait(const work::Cancellation& cancellation) {
    while (PQisBusy(handle_.get())) {
        if (cancellation.isRequested()) {
            cancel();
            throw work::Cancelled();
        }
        if (pollFor(PQsocket(handle_.get()), false) && !PQconsumeInput(handle_.get())) {
            raiseLost();
        }
    }
}

bool Connection::isLost() {
    if (isClosed_ || PQstatus(handle_.get()) == CONNECTION_BAD) {
        return true;
    }
    if (!isAwaiting_) { // all that may come unasked is the end
        pollfd waited{PQsocket(handle_.get()), POLLIN, 0};
        if (poll(&waited, 1, 0) > 0) {
            PQconsumeInput(handle_.get());
        }
    }
    return PQstatus(handle_.get()) == CONNECTION_BAD;
}

void Connection::cancel() {
    if (PGcancel* const request = PQgetCancel(handle_.get())) {
        char complaint[256];
        PQcancel(request, complaint, sizeof complaint);
        PQfreeCancel(request);
    }
    // What the cancellation hits is not known: perhaps only the next statement.
    isClosed_ = true;
    isAwaiting_ = false;
    handle_.reset();
}

void Connection::abandon() {
    if (!isClosed_ && isAwaiting_ && PQconsumeInput(handle_.get()) && PQisBusy(handle_.get())) {
        cancel();
    }
}

void Connection::raiseLost() {
    const QString reason = QString::fromStdString(trimmed(handle_ ? PQerrorMessage(handle_.get()) : ""));
    isClosed_ = true;
    isAwaiting_ = false;
    const QString title = QString::fromStdString(title_);
    throw ServerError((reason.isEmpty() ? Texts::tr("%1: нет соединения с сервером").arg(title)
                                        : Texts::tr("%1: нет соединения с сервером: %2").arg(title, reason))
                          .toStdString(),
                      true);
}

void Connection::raise(const PGresult* result) {
    if (PQstatus(handle_.get()) == CONNECTION_BAD) {
        raiseLost();
    }
    std::string reason = trimmed(PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY));
    if (const char* detail = PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL)) {
        reason += " (" + trimmed(detail) + ")";
    }
    if (reason.empty()) {
        reason = trimmed(PQresultErrorMessage(result));
    }
    throw ServerError(title_ + ": " + reason, false);
}

} // namespace orvane::postgres
