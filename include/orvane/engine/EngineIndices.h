#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/Feature.h"
#include "platform/work/Progress.h"
#include <orvane/engine/Export.h>
#include <orvane/engine/IndexStatistics.h>

#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string_view>
#include <vector>

namespace orvane::engine {

class EngineCache;
class EngineIndicesSetup;

/// The attribute indices of one table: each maps the values of an ordered list of attributes to the rows that
/// hold them. Between createStorage and dropStorage the store is usable; before and after, every question
/// gets its empty answer (-1, an empty set, 0). Indices are numbered from 1 and no number is used twice. Not
/// for use from two threads at once. Failures of the storage, createStorage apart, are err::SqliteException.
class ORVANE_ENGINE_EXPORT EngineIndices {
public:
    /// The comparisons. Any other code is invalid.
    enum Operation : quint8 {
        Equal = 1,
        Is = 2,
        Greater = 3,
        LessOrEqual = 4,
        Less = 5,
        GreaterOrEqual = 6,
        NotEqual = 7,
        IsNot = 8,
        Like = 9,
        Glob = 10,
    };

    /// An attribute, by its position in the table's schema, and how it is compared.
    struct Column {
        quint32 attribute = 0;
        quint8 operation = 0;
    };

    /// One condition of a search. A null value asks for NULL whatever the operation.
    struct Constant {
        qint32 attribute = 0;
        quint8 operation = 0;
        QVariant value;
    };

    /// How well an index fits a list of columns.
    struct Conformance {
        double score = 0.0; ///< 1.0 when it serves every condition that an index can serve
        bool equalityOnly = false;
    };

    enum class Status : int { Stop = 0, Continue = 1 };

    /// Groups of rows that agree in the first attributes of an index.
    struct Groups {
        qint64 number = 0;  ///< 0 when it is not known
        qint64 largest = 0; ///< likewise
        qint64 smallest = 0;
    };

    /// The order in which a look-up delivers its rows: of no concern, or that of the index's columns (NULL
    /// first), or its reverse.
    enum class RowOrder : quint8 { Any, Ascending, Descending };

    using FeatureIds =
        std::set<dp::FeatureId, std::function<bool(const dp::FeatureId&, const dp::FeatureId&)>>;

    /// Gathers rows for one index, to be stored by flushInserter. Must not outlive its store.
    class ORVANE_ENGINE_EXPORT InserterInterface {
    public:
        virtual ~InserterInterface();
        /// Appends a row. The attributes of the feature are the index's columns, in index order.
        virtual void addRow(const dp::Feature& feature) = 0;
        /// The statement that stores the rows so far.
        virtual QString sql() const;
        virtual QString tableName() const;
        virtual int indexId() const = 0;
    };

    /// Loads many rows into one index, all of them or none: sorted in memory in portions of about 128 MiB.
    /// One loader of a store at a time, and no change of its indices meanwhile. Its operations throw
    /// work::Cancelled. May outlive its store, not for any use.
    class ORVANE_ENGINE_EXPORT RowLoader {
    public:
        virtual ~RowLoader();
        /// One value per column of the index, in index order. Geometries are not indexed. The views are
        /// copied.
        virtual void addRow(qint64 row, std::span<const dp::Cell> values) = 0;
        /// Stores what was added and brings the statistics up to date. Without it nothing is stored.
        virtual void finish() = 0;
    };

    /// A search prepared once and run with many operands. Several may run on one store at once. May outlive
    /// its store; what it then answers is open.
    class ORVANE_ENGINE_EXPORT RowLookup {
    public:
        virtual ~RowLookup();
        /// Begins a search with one operand per column. Operands compare as in SQL: Equal to NULL finds
        /// nothing, Is NULL finds NULL. Texts are copied.
        virtual void start(std::span<const dp::Cell> operands) = 0;
        /// The next row; false at the end, and from then on.
        virtual bool next(qint64& row) = 0;
    };

    explicit EngineIndices(EngineCache& cache);
    EngineIndices(const EngineIndicesSetup& setup, EngineCache& cache);
    virtual ~EngineIndices();
    EngineIndices(const EngineIndices&) = delete;
    EngineIndices& operator=(const EngineIndices&) = delete;

    /// Starts afresh for a table: every index of before is gone. False when the storage could not be made.
    virtual bool createStorage(const dp::TableSchema& schema);
    /// Removes storage and indices. Numbers of indices are not used again.
    virtual void dropStorage() = 0;
    /// True when there is storage and the schema has an attribute.
    virtual bool isCorrect() const = 0;

    /// The index that serves the conditions best, -1 when none serves any. Ties go to the older index.
    virtual int findIndex(const std::vector<Column>& columns, Conformance* conformance = nullptr) const;
    /// The index that serves every condition, made (empty) when there is none yet; -1 without storage.
    virtual int addIndex(const std::vector<Column>& columns);
    /// Removes an index; an unknown one is ignored.
    virtual void dropIndex(int index) = 0;
    /// Removes the rows. The statistics stay until rows are stored again.
    virtual void clearIndex(int index) = 0;

    /// An inserter for an index, never null; of an unknown one it has no columns.
    virtual std::unique_ptr<InserterInterface> getInserter(int index) = 0;
    /// Stores the rows of an inserter with one statement and brings the statistics up to date. Null is
    /// ignored.
    virtual void flushInserter(std::unique_ptr<InserterInterface> inserter) = 0;

    /// The features that satisfy every constant whose attribute the index covers; none when it covers none of
    /// them.
    virtual FeatureIds findRows(int index, const std::vector<Constant>& constants) const = 0;

    /// Nothing is known of an unknown index. Valid until the index is dropped.
    virtual const IndexStatistics& statistics(int index) const = 0;
    /// Rows of the table: as set, else as the first index knows; 0 when nobody knows.
    virtual unsigned long long quantity() const = 0;
    /// Sets the rows of the table; 0 leaves them to the indices.
    virtual void setQuantity(unsigned long long quantity) = 0;
    /// At most how many rows satisfy the conditions: the largest group for equality, half the table for
    /// ranges.
    virtual unsigned long long estimateRows(int index, const std::vector<Column>& columns) const = 0;
    /// Calls back with each attribute of the index in order until the answer is Stop.
    virtual void enumColumns(int index, const std::function<Status(int attribute)>& callback) const = 0;

protected:
    /// What createStorage, addIndex and findIndex do once their arguments are checked: there is storage, or
    /// is to be, for a schema with attributes. May throw err::SqliteException.
    virtual void createStorageImpl(const dp::TableSchema& schema) = 0;
    virtual int addIndexImpl(const std::vector<Column>& columns) = 0;
    virtual int findIndexImpl(const std::vector<Column>& columns, Conformance& conformance) const = 0;

public:
    /// The fast way to fill an index; null for an unknown one. The progress, if there is one, is told of each
    /// row twice: when it has been added and when it has been stored.
    virtual std::unique_ptr<RowLoader> getLoader(int index, work::Progress* progress = nullptr) = 0;
    /// The fast way to search one: `columns` are attributes of the index with the comparisons that all have
    /// to hold, in any number; without any every row is found. Null for an unknown index or an attribute that
    /// it does not cover.
    virtual std::unique_ptr<RowLookup> getLookup(int index, std::span<const Column> columns,
                                                 RowOrder order = RowOrder::Any) const = 0;
    /// The groups of rows that agree in the first so many attributes, from 1 on, of an index. All is known
    /// when one loader stored all rows in one portion.
    virtual Groups groups(int index, int columns) const = 0;
    /// Whether a Like or Glob search in a text column with that pattern (UTF-8) reads a part of the index
    /// only: the pattern begins with letters, and the texts that begin so are neighbours.
    virtual bool narrows(quint8 operation, std::string_view pattern) const = 0;
    /// How many rows satisfy one condition, counted up to `most`: of a pattern, how many begin as it does.
    virtual unsigned long long countRows(int index, const Column& column, const dp::Cell& operand,
                                         unsigned long long most) const = 0;

protected:
    /// The engine's cache, which knows the features by row number.
    EngineCache& cache() const { return cache_; }
    /// The schema of the table; null without storage.
    const dp::TableSchema* schema() const { return schema_.get(); }
    void setSchema(std::unique_ptr<dp::TableSchema> schema) { schema_ = std::move(schema); }

private:
    std::unique_ptr<dp::TableSchema> schema_;
    EngineCache& cache_;
};

} // namespace orvane::engine
