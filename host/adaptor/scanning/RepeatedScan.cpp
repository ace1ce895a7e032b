#include "host/adaptor/scanning/RepeatedScan.h"

#include "host/adaptor/indices/Costs.h"
#include "platform/dp/ValueOrder.h"

#include <algorithm>

namespace orvane::adaptor {

namespace {

using dp::Comparison;

constexpr unsigned rowsBetweenChecks = 1024;

} // namespace

void RepeatedScan::restart() {
    spent_ = 0;
    isGivenUp_ = false;
    mayBeLarge_ = false;
    rows_.reset();
}

void RepeatedScan::countScan(const dp::Table& table, IndexUse::Outcome index, bool isLookedUp) {
    mayBeLarge_ = index != IndexUse::Outcome::ScansCheaper && index != IndexUse::Outcome::Used;
    const double scanning = cost::textTest * static_cast<double>(table.featureCount().value_or(0));
    spent_ += cost::opening + (isLookedUp ? std::min(scanning, cost::sourceLookup) : scanning);
}

void RepeatedScan::countLookup(std::size_t rows) {
    spent_ += cost::opening + cost::foundRow * static_cast<double>(rows);
}

/// An equality whose operand is of the column's kind, so that SQLite compares the two as they are.
bool RepeatedScan::isUsable(const dp::ScanTerm& term) const {
    if (term.comparison != Comparison::Equal && term.comparison != Comparison::Is) {
        return false;
    }
    const auto& columns = declaration_.columns();
    const auto column = std::find_if(columns.begin(), columns.end(),
                                     [&term](const auto& each) { return each.attribute == term.attribute; });
    const dp::Cell operand = dp::cellOf(term.operands.front());
    return operand.isNull() || column->comparesAsIs(operand.type());
}

dp::Cursor* RepeatedScan::find(dp::Table& table, const dp::ScanRequest& request,
                               const work::Cancellation& cancellation) {
    if (!rows_ && !keep(table, request, cancellation)) {
        return nullptr;
    }
    const auto term = std::find_if(request.terms.begin(), request.terms.end(), [this](const auto& each) {
        return each.attribute == key_.attribute && each.collation == key_.collation && isUsable(each);
    });
    cursor_.start(*rows_, term == request.terms.end() ? rows_->all()
                                                      : rows_->find(dp::cellOf(term->operands.front())));
    return &cursor_;
}

bool RepeatedScan::keep(dp::Table& table, const dp::ScanRequest& request,
                        const work::Cancellation& cancellation) {
    if (isGivenUp_ || spent_ == 0) {
        return false;
    }
    std::vector<ArrangedRows::Key> keys;
    dp::ScanRequest whole;
    whole.attributes = request.attributes;
    for (const dp::ScanTerm& term : request.terms) {
        if (std::find(whole.attributes.begin(), whole.attributes.end(), term.attribute) ==
            whole.attributes.end()) {
            whole.attributes.push_back(term.attribute);
        }
        if (isUsable(term)) {
            keys.push_back({term.attribute, term.collation, false});
        }
    }
    const auto count = static_cast<double>(table.featureCount().value_or(0));
    const auto values = static_cast<double>(whole.attributes.size());
    if (keys.empty() || (count > cost::mostRowsBeforeIndex && !mayBeLarge_) ||
        spent_ < count * (cost::keptRow + cost::keptValue * values)) {
        return false;
    }
    isGivenUp_ = true; // unless all goes well
    if (ArrangedRows::expectedBytes(count, whole.attributes.size(), keys.size()) > mostBytes) {
        return false;
    }
    ArrangedRows rows(whole.attributes, keys);
    rows.reserve(static_cast<std::size_t>(count)); // a number that a file can hold, and below the bound
    const auto source = table.openCursor(whole);
    while (source->next()) {
        rows.add(*source);
        if (rows.rowCount() % rowsBetweenChecks == 0) {
            cancellation.check();
            if (rows.bytes() > mostBytes) {
                return false;
            }
        }
    }
    key_ = keys[rows.arrangeForLookups(cancellation)];
    rows_.emplace(std::move(rows));
    return true;
}

} // namespace orvane::adaptor
