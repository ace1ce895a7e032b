#pragma once

#include "host/postgres/connection/Server.h"

#include <QCoreApplication>

#include <memory>
#include <string>
#include <vector>

namespace orvane::postgres {

/// A group of edits of a database, of however many of its tables: a transaction of the server's, which sees
/// the database as it was when it began. An edit of a row that others have changed since is refused.
///
/// Operations throw dp::EditError with the server and the reason. Each table may call the ones that end the
/// group or set a savepoint: only the first call has an effect. Used from one thread.
class EditTransaction {
    Q_DECLARE_TR_FUNCTIONS(orvane::postgres)
public:
    explicit EditTransaction(std::shared_ptr<Server> server);
    ~EditTransaction() { rollback(); }
    EditTransaction(const EditTransaction&) = delete;
    EditTransaction& operator=(const EditTransaction&) = delete;

    bool isEnded() const { return isEnded_; }
    /// For readers who want to see the changes.
    const std::shared_ptr<Connection>& connection() const { return connection_; }

    /// A command that leaves nothing behind where it fails: the rows that it returns.
    Result run(const Command& command);

    void setSavepoint(int number);
    void releaseSavepoint(int number);
    /// Takes back what was changed since; everything where the savepoint is older than the group.
    void rollbackTo(int number);

    /// Commits. A connection that is lost meanwhile is made again to ask what became of the transaction.
    void prepare();
    void rollback() noexcept;

private:
    void execute(std::span<const Command> commands);
    /// Throws where a failure has ended the transaction.
    void requireTransaction() const;
    void end() noexcept;
    void settle(const std::string& transaction, const ServerError& failure);

    const std::shared_ptr<Server> server_;
    std::shared_ptr<Connection> connection_;
    std::vector<int> savepoints_;
    bool isEnded_ = false;
};

} // namespace orvane::postgres
