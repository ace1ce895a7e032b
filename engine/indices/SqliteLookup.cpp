#include "engine/indices/SqliteLookup.h"

#include "engine/indices/IndexSql.h"

#include <algorithm>
#include <stdexcept>

namespace orvane::engine {

namespace {

template<typename Value>
void appendBytes(std::string& bytes, Value value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string shapeOf(const SqliteLookup::Search& search) {
    std::string shape;
    appendBytes(shape, search.index);
    appendBytes(shape, static_cast<quint8>(search.orderColumns.empty() ? 0 : search.isDescending ? 2 : 1));
    for (const SqliteLookup::Term& term : search.terms) {
        appendBytes(shape, term.column.attribute);
        appendBytes(shape, term.column.operation);
    }
    return shape;
}

} // namespace

SqliteLookup::SqliteLookup(std::shared_ptr<LookupStatements> statements, Search search,
                           std::shared_ptr<PatternRanges> patterns)
    : statements_(std::move(statements)), search_(std::move(search)), patterns_(std::move(patterns)),
      shape_(shapeOf(search_)) {
    if (std::any_of(search_.terms.begin(), search_.terms.end(),
                    [](const Term& term) { return term.isNarrowed; })) {
        ranges_.resize(search_.terms.size());
    }
}

SqliteLookup::~SqliteLookup() {
    if (statement_) {
        statements_->put(takenShape_, std::move(*statement_));
    }
}

QString SqliteLookup::sql() const {
    QString conditions;
    const auto add = [&conditions](quint32 attribute, quint8 operation, int parameter) {
        conditions += (conditions.isEmpty() ? QLatin1String(" Where ") : QLatin1String(" And ")) +
                      indexColumn(static_cast<qint32>(attribute)) + operatorText(operation) +
                      QLatin1Char('?') + QString::number(parameter);
    };
    for (std::size_t i = 0; i < search_.terms.size(); ++i) {
        const EngineIndices::Column& column = search_.terms[i].column;
        add(column.attribute, column.operation, static_cast<int>(i) + 1);
        if (!ranges_.empty() && !ranges_[i].lower.empty()) {
            add(column.attribute, EngineIndices::GreaterOrEqual, lowerParameter(i));
        }
        if (!ranges_.empty() && !ranges_[i].upper.empty()) {
            add(column.attribute, EngineIndices::Less, lowerParameter(i) + 1);
        }
    }
    QString order;
    for (const qint32 column : search_.orderColumns) {
        order += (order.isEmpty() ? QLatin1String(" Order By ") : QLatin1String(",")) + indexColumn(column) +
                 (search_.isDescending ? QLatin1String(" Desc") : QLatin1String());
    }
    return QLatin1String("Select id From ") + indexTable(search_.index) + conditions + order;
}

void SqliteLookup::findRanges(std::span<const dp::Cell> operands) {
    for (std::size_t i = 0; i < ranges_.size(); ++i) {
        ranges_[i] = {};
        if (search_.terms[i].isNarrowed && operands[i].type() == dp::CellType::Text) {
            ranges_[i] = patterns_->find(operands[i].view(), search_.terms[i].column.operation);
        }
    }
}

void SqliteLookup::takeStatement() {
    std::string shape = shape_;
    for (const PatternRange& range : ranges_) {
        appendBytes(shape,
                    static_cast<quint8>((range.lower.empty() ? 0 : 1) + (range.upper.empty() ? 0 : 2)));
    }
    if (statement_ && shape != takenShape_) {
        statements_->put(takenShape_, std::move(*statement_));
        statement_.reset();
    }
    if (!statement_) {
        statement_ = statements_->take(shape, [this] { return sql(); });
        takenShape_ = std::move(shape);
    }
}

void SqliteLookup::start(std::span<const dp::Cell> operands) {
    if (operands.size() != search_.terms.size()) {
        throw std::logic_error("an index look-up takes one operand per column");
    }
    if (!ranges_.empty()) {
        findRanges(operands);
        takeStatement();
    } else if (!statement_) {
        takeStatement();
    }
    statement_->reset();
    isAtEnd_ = false;
    for (std::size_t i = 0; i < operands.size(); ++i) {
        statement_->bind(static_cast<int>(i) + 1, operands[i]);
    }
    for (std::size_t i = 0; i < ranges_.size(); ++i) {
        if (!ranges_[i].lower.empty()) {
            statement_->bind(lowerParameter(i), std::string_view(ranges_[i].lower));
        }
        if (!ranges_[i].upper.empty()) {
            statement_->bind(lowerParameter(i) + 1, std::string_view(ranges_[i].upper));
        }
    }
}

bool SqliteLookup::next(qint64& row) {
    if (isAtEnd_ || !statement_->next()) {
        isAtEnd_ = true; // SQLite would begin again
        return false;
    }
    row = statement_->integer(0);
    return true;
}

} // namespace orvane::engine
