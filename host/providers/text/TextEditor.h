#pragma once

#include "host/providers/text/TextTable.h"
#include "host/providers/writing/TableEditor.h"

#include <QCoreApplication>

class QIODevice;

namespace orvane::files {

class RecordReader;

/// Edits a text table: changes are kept in memory until somebody wants to read them or the group ends; then a
/// copy of the file is written anew in one pass, with all bytes as they were but those of the changed values.
class TextEditor final : public TableEditor {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::TextEditor)
public:
    explicit TextEditor(std::shared_ptr<TextTable> table) : table_(std::move(table)) {}

    bool isReadOnly() override;
    std::int64_t insert(const dp::Feature& feature) override;
    void update(const dp::Feature& feature, const std::vector<int>& positions) override;
    void remove(const dp::FeatureId& id) override;

private:
    static constexpr int wholeRow = -1; ///< instead of a column: the row goes

    /// A value of a row, by its place in `texts_`.
    struct Change {
        std::int64_t row = 0;
        int column = wholeRow;
        bool isNull = true;
        std::size_t start = 0, size = 0;
    };
    /// NULL is nothing.
    using Value = std::optional<std::string>;
    class Output;
    class Group;

    void requireWritable() const;
    std::shared_ptr<FileEdit> startEdit() override;
    std::int64_t rowOf(const dp::FeatureId& id) const;
    /// Calls `set(column, value)` for an attribute; a geometry may be in two columns.
    template<class Set>
    void forEachColumn(const dp::Feature& feature, int position, Set set) const;
    Value textOf(const dp::Feature& feature, int position) const;
    std::vector<Value> textsOfGeometry(const dp::Feature& feature, int position) const;
    void addChange(std::int64_t row, int column, const Value& value);
    void appendValue(int column, const std::optional<std::string_view>& value, bool isQuoted,
                     std::string& text) const;

    /// Writes the file at that path anew with the changes so far.
    void writeOut(const QString& path);
    void write(QIODevice& file);
    void copyRows(RecordReader& records, std::int64_t& row, Output& output);
    void changeRow(RecordReader& record, const Change* changes, const Change* end, Output& output);
    void requireNumber(std::string_view record) const;
    void forget();

    const std::shared_ptr<TextTable> table_;
    std::int64_t rows_ = 0, insertedRows_ = 0; ///< in the file, and behind them
    std::vector<Change> changes_;
    std::size_t nextChange_ = 0; ///< while they are written
    std::string texts_;
    std::string inserted_; ///< records, as they will stand in the file
};

} // namespace orvane::files
