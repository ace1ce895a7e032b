#pragma once

#include <host/adaptor/Export.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <string_view>

struct sqlite3;

namespace orvane::adaptor {

/// Tells how a statement on the tables of the module is answered. Made just before the statement is prepared
/// and asked after it has run, on the thread of the engine; in between that thread prepares and runs nothing
/// else.
class ORVANE_ADAPTOR_EXPORT StatementExplanation {
public:
    /// `sqliteText` is what will be prepared; of several statements only the first counts. A text that
    /// SQLite does not take explains nothing.
    StatementExplanation(sqlite3* database, std::string_view sqliteText);
    ~StatementExplanation();
    StatementExplanation(const StatementExplanation&) = delete;
    StatementExplanation& operator=(const StatementExplanation&) = delete;

    /// SQLite's steps in their order, in the user's language: for each table what answered it (an index, made
    /// now or there before, the R-tree, row numbers, the provider's filter, a scan), rows expected and found,
    /// and why no index answered; then sorting and subqueries. Steps of a step are indented by two blanks.
    QStringList lines() const;

private:
    struct Internal;
    std::unique_ptr<Internal> internal_;
};

} // namespace orvane::adaptor
