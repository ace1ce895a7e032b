#pragma once

#include "host/providers/results/ResultRows.h"
#include "host/shell/output/ResultWriter.h"

#include <functional>
#include <optional>
#include <stdexcept>

namespace orvane::shell {

/// The result did not become the table or the file that it should; the text is UTF-8 for the user.
class DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Holds the rows of a statement until all are there, and then hands them over to become a table or a file.
/// All calls throw DataError.
class DataWriter : public ResultWriter {
public:
    using Target = std::function<void(files::ResultRows&)>;

    /// The statement is the one whose rows are written. Nothing is owned.
    DataWriter(sqlite3_stmt* statement, const dp::DataCatalog& catalog, engine::EngineCache& cache,
               Target target, Output& output);

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override;

private:
    sqlite3_stmt* statement_;
    const dp::DataCatalog& catalog_;
    engine::EngineCache& cache_;
    Target target_;
    std::optional<files::ResultRows> rows_;
};

} // namespace orvane::shell
