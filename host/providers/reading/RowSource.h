#pragma once

#include "host/providers/columns/ColumnBatch.h"
#include "host/providers/datasets/FileStamp.h"
#include "platform/dp/Condition.h"
#include "platform/dp/TableSchema.h"

#include <QByteArray>

#include <optional>
#include <string>

namespace orvane::files {

/// The rows of a table as its format delivers them. The readers it makes may live longer than the source, and
/// any thread may start one; all else is for one thread at a time. Whatever fails throws std::runtime_error
/// with the name of the file and the reason.
class RowSource {
public:
    /// A demand on the values of an attribute.
    struct Test {
        int attribute;
        dp::Condition condition;
    };
    /// Tests in the words of the format.
    struct Filter {
        std::string text;
        bool usesIndex = false; ///< without, every row is looked at
    };

    RowSource() = default;
    virtual ~RowSource();
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;

    /// GDAL's path of the file, UTF-8.
    virtual const QByteArray& path() const = 0;
    /// The file as it was before anything of it was read.
    virtual FileStamp firstStamp() const { return FileStamp(path()); }
    virtual std::shared_ptr<const dp::TableSchema> schema() const = 0;
    virtual ValueClass valueClass(int attribute) const = 0;

    /// Nothing where only a scan would tell.
    virtual std::optional<std::int64_t> rowCount() = 0;
    /// Whether rowCount() may stand for a scan.
    virtual bool countsExactly() = 0;
    /// Whether finding a row by its identifier needs no scan.
    virtual bool findsRows() = 0;
    /// Whether an index of the file begins with the attribute, so that a filter on it reads few rows.
    virtual bool isIndexed(int) { return false; }
    virtual bool hasSpatialIndex() { return false; }
    /// The identifiers, ascending, of the rows whose box meets the window, and perhaps of others; nothing
    /// where they are not known or more than `most`.
    virtual std::optional<std::vector<std::int64_t>> rowsIn(const geometry::Envelope& window,
                                                            std::size_t most);
    /// A filter that lets every row pass that passes the tests, and whose box meets the window; nothing where
    /// reading all rows is as good.
    virtual std::optional<Filter> filterOf(const std::vector<Test>& tests,
                                           const std::optional<geometry::Envelope>& window);

    /// Whether a group of edits changes the rows while readers look at them.
    virtual bool isEdited() const = 0;

    /// Reads rows whole or as far as these attributes go.
    virtual std::unique_ptr<BatchReader> scan(const std::vector<int>& attributes,
                                              std::int64_t batchRows = rowsPerBatch,
                                              const std::string& filter = {}) = 0;
    /// Reads the rows with these identifiers, ascending; those that do not exist are left out.
    virtual std::unique_ptr<BatchReader> lookUp(const std::vector<int>& attributes,
                                                std::vector<std::int64_t> ids) = 0;
    /// Reads about so many rows, ascending, each as likely as the other where the format finds rows fast: a
    /// batch for each run of rows that follow each other. Else the first ones.
    virtual std::unique_ptr<BatchReader> sample(const std::vector<int>& attributes, std::int64_t rows);
    /// The file has changed, or is about to be.
    virtual void forget() = 0;
};

} // namespace orvane::files
