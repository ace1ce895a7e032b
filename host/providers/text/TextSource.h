#pragma once

#include "host/providers/reading/RowSource.h"
#include "host/providers/text/TextTable.h"

namespace orvane::files {

/// The rows of a text table; their identifiers are their numbers, from 1.
class TextSource final : public RowSource {
public:
    explicit TextSource(std::shared_ptr<TextTable> table) : table_(std::move(table)) {}

    const QByteArray& path() const override { return table_->path(); }
    std::shared_ptr<const dp::TableSchema> schema() const override { return table_->schema(); }
    ValueClass valueClass(int attribute) const override;

    std::optional<std::int64_t> rowCount() override { return table_->rowCount(); }
    bool countsExactly() override { return true; }
    bool findsRows() override { return !table_->places()->empty(); }
    bool isEdited() const override { return table_->currentPath() != table_->path(); }
    std::unique_ptr<BatchReader> scan(const std::vector<int>& attributes, std::int64_t batchRows,
                                      const std::string& filter) override;
    std::unique_ptr<BatchReader> lookUp(const std::vector<int>& attributes,
                                        std::vector<std::int64_t> ids) override;
    /// From places all over a file in UTF-8, unless it is packed in an archive.
    std::unique_ptr<BatchReader> sample(const std::vector<int>& attributes, std::int64_t rows) override;
    void forget() override {}

private:
    std::shared_ptr<TextTable> table_;
};

} // namespace orvane::files
