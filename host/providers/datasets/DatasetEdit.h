#pragma once

#include "host/providers/datasets/FileEdit.h"
#include "host/providers/datasets/GdalHandles.h"

#include <memory>
#include <vector>

struct sqlite3;

namespace orvane::files {

class DatasetPool;
class GdalErrorScope;

/// A group of edits of a file through a handle of GDAL's. A file of SQLite's is edited in place, inside a
/// transaction of its own.
class DatasetEdit final : public FileEdit {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::DatasetEdit)
public:
    explicit DatasetEdit(DatasetPool& pool);
    /// Takes back what is not committed.
    ~DatasetEdit() override;

    /// For layers to be changed; another one after rollbackTo().
    GDALDatasetH dataset() const { return dataset_.get(); }
    /// Keeps what uses handles of the dataset, until that is closed.
    void hold(std::shared_ptr<void> user) { users_.push_back(std::move(user)); }
    /// The dataset for readers who want to see the changes; null where they open path() for that, or where
    /// GDAL's queries do not give the identifiers of rows (SQLite other than GeoPackage): there they see the
    /// rows as they were.
    std::shared_ptr<void> sharedDataset() const;

private:
    void requireTransaction() const override;
    void writeOut() override;
    void close() noexcept override;
    void reopen() override;
    void finish() override;
    void markSavepoint(int number) override;
    void dropSavepoint(int number) override;
    void returnToSavepoint(int number) override;
    void abandon() noexcept override;

    void startTransaction();
    void commitTransaction();
    void correctCounts();
    sqlite3* database() const;
    void execute(const QString& statement);
    qint64 numberOf(const char* query);
    [[noreturn]] void raiseFromDriver(const QString& reason) const;
    void raiseIfFailed(const GdalErrorScope& errors) const;

    DatasetPool& pool_;
    std::shared_ptr<void> dataset_;
    std::vector<std::shared_ptr<void>> users_;
    bool countsAreWrong_ = false; ///< those that GDAL keeps of the rows
};

} // namespace orvane::files
