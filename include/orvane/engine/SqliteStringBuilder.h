#pragma once

#include <orvane/engine/CaseInsensitiveLess.h>
#include <orvane/engine/Export.h>

#include "platform/sql/lexing/SqlError.h"
#include "platform/sql/printing/SqlStringBuilder.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace orvane::dp {
class DataObject;
class Selection;
} // namespace orvane::dp

namespace orvane::engine {

class EngineCache;
class ScannedTables;

/// A table that a statement names.
struct TableRef {
    std::wstring name;  ///< as rendered
    std::wstring alias; ///< empty when the statement gives none
};

/// A column that a statement names.
struct ColumnRef {
    std::wstring qualifier; ///< table name or alias before the dot, possibly empty
    std::wstring name;      ///< as rendered
};

/// Renders a statement of the dialect as SQLite text for the engine database: operators that SQLite lacks
/// become calls of functions, geometry and style columns get their fixed names, the selection becomes its
/// table restricted to the selected rows, and comparisons follow a collation.
///
/// One builder translates one statement: make it, set the options, call buildString(), read the results.
/// Rendering a second tree keeps what the first has collected. Throws nothing; what went wrong is in errors()
/// and unsupportedList(). One thread at a time.
class ORVANE_ENGINE_EXPORT SqliteStringBuilder : public sql::SqlStringBuilder {
public:
    using FunctionNames = std::set<QString, caseInsensitiveLess>;
    using Errors = std::vector<std::shared_ptr<sql::SqlError>>;

    /// An empty collation leaves comparisons as they are. The context, not owned, may be null.
    SqliteStringBuilder(QString collate, const sql::StringBuildContext* context);
    ~SqliteStringBuilder() override;

    /// The collation of comparisons, as for the constructor.
    SqliteStringBuilder& setCollate(QString collate);
    /// Asks for dependencies() and primaries().
    void setNeedDependencies(bool need) { needDependencies_ = need; }
    /// Asks for columns().
    void setNeedColumns(bool need) { needColumns_ = need; }
    /// The functions that a statement may call, by the dialect's names; an empty set admits all.
    void setWhiteList(FunctionNames names) { whiteList_ = std::move(names); }
    /// What the selection pseudo-table stands for. Row numbers come from the cache; without a cache, or with
    /// an empty selection, a statement that names the pseudo-table gets a SelectionTableIsAbsent error.
    void setSelection(const dp::Selection& selection, EngineCache* cache);
    /// Tells the columns of a table that a Natural Join may match: neither geometry nor style. Empty for an
    /// unknown table. Without a name: those that a lone expression may use.
    using TableColumns = std::function<std::vector<std::wstring>(const std::wstring& table)>;
    /// With it a Natural Join of tables becomes one of the columns that both have; without it SQLite would
    /// match their geometries too.
    void setTableColumns(TableColumns columns) { tableColumns_ = std::move(columns); }
    const TableColumns& tableColumns() const { return tableColumns_; }
    /// Tells whether a table has the hidden columns of ColumnNames.h. With it a query for the rows of one
    /// such table that are the nearest to something reads them in the order of their distance, and relations
    /// between the geometries of two are looked up in whichever SQLite chooses.
    using HasHiddenColumns = std::function<bool(const std::wstring& table)>;
    void setHasHiddenColumns(HasHiddenColumns has) { hasHiddenColumns_ = std::move(has); }
    /// Gives the blob that an SQL expression without columns stands for, as hexadecimal digits; none for
    /// other values. With it the geometries that joins are restricted by are literals, by which they are
    /// planned.
    using BlobOf = std::function<std::optional<std::wstring>(const std::wstring& expression)>;
    void setBlobOf(BlobOf blobOf) { blobOf_ = std::move(blobOf); }
    /// Names by their lower case, columns of tables also as `qualifier.column`, each in the spellings that
    /// are declared. A name that differs from all of them in letter case only is rendered as the first.
    using Spellings = std::map<std::wstring, std::vector<std::wstring>>;
    void setSpellings(Spellings spellings) { spellings_ = std::move(spellings); }
    /// Stores the finished text.
    void setQuery(std::wstring query) { query_ = std::move(query); }
    /// Stores whether it is that of a lone expression, not of a statement.
    void setIsExpression(bool isExpression) { isExpression_ = isExpression; }

    /// The finished text, as its maker has stored it.
    const std::wstring& query() const { return query_; }
    /// Every table named at any depth, in the order of rendering.
    const std::vector<TableRef>& dependencies() const { return dependencies_; }
    /// The tables named by the outermost query.
    const std::vector<TableRef>& primaries() const { return primaries_; }
    /// Every column named at any depth, as often and in the order in which it is rendered.
    const std::vector<ColumnRef>& columns() const { return columns_; }
    /// Whether it is an expression, as its maker has stored it.
    bool isExpression() const { return isExpression_; }
    /// Whether the outermost query groups its rows.
    bool isAggregate() const { return isAggregate_; }
    /// Whether the statement refers to row numbers.
    bool isIdUsed() const { return isIdUsed_; }
    /// Where, in the outermost query, further result columns can be inserted: at the end of its result
    /// columns. 0 when the statement is no query or puts several together. Counts units of std::wstring.
    std::size_t insertOffset() const { return insertOffset_; }
    /// The table that the result is to become (Select … Into name); empty when the statement says nothing of
    /// it. The rendered text is the query alone.
    const std::wstring& intoTable() const { return intoTable_; }
    /// The file that the result is to become (Select … Into 'path'), likewise.
    const std::wstring& intoFile() const { return intoFile_; }
    /// What was found wrong so far, in its order.
    const Errors& errors() const { return errors_; }
    /// The functions that the white list does not admit, as they were first written.
    const FunctionNames& unsupportedList() const { return unsupported_; }
    /// Whether the statement calls a function that the white list does not admit. Says nothing of errors().
    bool hasErrors() const { return !unsupported_.empty(); }

    /// Append to errors(), or replace all of them.
    void addError(std::shared_ptr<sql::SqlError> error);
    void setError(std::shared_ptr<sql::SqlError> error);
    void addErrors(const std::vector<std::shared_ptr<sql::SqlSyntaxError>>& errors);
    void setErrors(const std::vector<std::shared_ptr<sql::SqlSyntaxError>>& errors);
    /// Appends an UnknownFunction for each function of unsupportedList().
    void addTranslateErrors();

    using sql::SqlStringBuilder::visit;
    void visit(const sql::ast::ColumnReference& node) override;
    void visit(const sql::ast::DeleteStatement& node) override;
    void visit(const sql::ast::DerivedColumn& node) override;
    void visit(const sql::ast::DerivedTable& node) override;
    void visit(const sql::ast::ExplicitTable& node) override;
    void visit(const sql::ast::Function& node) override;
    void visit(const sql::ast::IntoClause& node) override;
    void visit(const sql::ast::JoinNode& node) override;
    void visit(const sql::ast::Operation& node) override;
    void visit(const sql::ast::QualifiedAsterisk& node) override;
    void visit(const sql::ast::QueryOperation& node) override;
    void visit(const sql::ast::QuerySpecification& node) override;
    void visit(const sql::ast::TablePrimary& node) override;
    void visit(const sql::ast::UpdateStatement& node) override;
    void visit(const sql::ast::SessionStatement& node) override;
    std::wstring operationToString(sql::OperationCode code) const override;
    std::wstring ternaryToString(sql::TernaryLogic::Value value) override;
    std::wstring& onFrom(std::wstring& text) override;
    std::wstring& onWhere(std::wstring& text) override;
    std::wstring constructSelect(std::wstring select, std::wstring quantifier, std::wstring columns,
                                 std::wstring rest) override;

protected:
    void appendName(std::wstring& text, const std::wstring& name,
                    NameUse use = NameUse::Plain) const override;
    void appendNames(std::wstring& text, const sql::ast::NodeList& columns) override;
    std::wstring renderWith(const sql::ast::QueryExpression& query) override;
    std::wstring renderCondition(const sql::ast::NodePtr& condition) override;
    std::wstring renderKey(const sql::ast::NodePtr& key) override;
    std::wstring renderBound(const sql::ast::NodePtr& offset) override;
    void appendResultClauses(std::wstring& text, const sql::ast::QueryExpression& query) override;
    void appendLimit(std::wstring& text, const sql::ast::QueryExpression& query) override;
    bool needsEnclosing(const sql::ast::NodePtr& query,
                        const sql::ast::QueryOperation& parent) const override;
    std::wstring renderEnclosed(const sql::ast::NodePtr& query) override;

private:
    using NamedQueries = std::vector<sql::ast::CommonTable>;

    /// A query being rendered.
    struct Frame {
        std::set<std::wstring> selectionAliases; ///< that its From gives to the selection pseudo-table
        const sql::ast::NodeList* columns = nullptr;
        bool isCompared = false;    ///< its result columns are compared with others
        bool isBehindWhere = false; ///< where names and numbers of result columns are understood
        bool isCompound = false;    ///< of several queries put together: only their order is rendered in it
        std::shared_ptr<const ScannedTables> tables = {}; ///< of its From; null where it is no query
        std::vector<sql::ast::TablePrimary> calls = {};   ///< of functions that give a table, in its From
    };

    void visitSpecification(const sql::ast::QuerySpecification& node);
    void visitRows(const sql::ast::QuerySpecification& node);
    void visitCall(const sql::ast::TablePrimary& node);
    const sql::ast::TablePrimary* callOfColumn(const sql::ast::ColumnReference& node) const;
    bool hasHiddenColumns(const sql::ast::TablePrimary& table, const NamedQueries& named) const;
    std::shared_ptr<const sql::ast::QuerySpecification>
    nearestFirst(const sql::ast::QuerySpecification& node) const;
    void visitCorrectedColumn(const sql::ast::ColumnReference& node);
    bool visitGeo(const sql::ast::ColumnReference& node);
    bool visitStyle(const sql::ast::ColumnReference& node);
    void visitImpl(const sql::ast::ColumnReference& node);
    void visitSelectionTable(const sql::ast::TablePrimary& node);
    void recordTable(const sql::ast::TablePrimary& node);
    std::vector<std::wstring> columnsOf(const sql::ast::NodePtr& source, int depth);
    std::vector<std::wstring> namedColumns(const sql::ast::NodeList& names, const sql::ast::NodePtr& query,
                                           int depth);
    std::vector<std::wstring> resultColumns(const sql::ast::NodeList& nodes, const sql::ast::NodePtr& source,
                                            int depth);
    sql::ast::NodePtr resultColumnNamed(const sql::ast::ColumnReference& node) const;
    const sql::ast::CommonTable* namedQuery(const std::wstring& name) const;
    const std::wstring& spelling(const std::wstring& key, const std::wstring& name) const;
    const std::wstring* selectionAlias(const std::wstring& qualifier) const;
    void appendCollation(std::wstring& text) const;
    sql::ast::NodePtr collated(const sql::ast::NodePtr& value) const;

    std::size_t insertOffset_ = 0;
    std::size_t fromLength_ = 0;
    std::wstring query_;
    QString collate_;
    Errors errors_;
    std::vector<TableRef> dependencies_;
    std::vector<TableRef> primaries_;
    FunctionNames whiteList_;
    FunctionNames unsupported_;
    std::vector<ColumnRef> columns_;
    std::vector<Frame> frames_; ///< of the queries and changes being rendered, the innermost last
    std::vector<const NamedQueries*> namedQueries_; ///< that can be referred to now
    int enclosing_ = 0;                             ///< queries around this one that the user has not written
    bool isInBound_ = false;                        ///< of a frame
    bool isNaming_ = false;                         ///< columns have no values here
    bool isCompared_ = false; ///< the columns of a query that begins now are compared with others
    std::set<std::int64_t> selectionIds_;
    std::shared_ptr<dp::DataObject> selectionObject_;
    bool needDependencies_ = false;
    bool needColumns_ = false;
    bool isExpression_ = false;
    bool isAggregate_ = false;
    bool isIdUsed_ = false;
    TableColumns tableColumns_;
    HasHiddenColumns hasHiddenColumns_;
    BlobOf blobOf_;
    Spellings spellings_;
    std::wstring intoTable_;
    std::wstring intoFile_;
};

} // namespace orvane::engine
