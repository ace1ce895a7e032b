#include "host/adaptor/planning/ScanPlan.h"

#include <charconv>

namespace orvane::adaptor {

namespace {

void appendNumber(std::string& text, std::uint64_t number) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    text.append(digits, end.ptr);
    text.push_back(' ');
}

/// Takes the next number and the blank behind it off the front.
std::uint64_t takeNumber(std::string_view& text) {
    std::uint64_t number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto taken = static_cast<std::size_t>(end.ptr - text.data());
    text.remove_prefix(taken < text.size() ? taken + 1 : taken);
    return number;
}

} // namespace

std::string ScanPlan::toText() const {
    std::string text;
    appendNumber(text, number);
    appendNumber(text, columnsUsed);
    appendNumber(text, static_cast<std::uint64_t>(rowNumber));
    appendNumber(text, relations.size());
    for (const Relation& each : relations) {
        appendNumber(text, static_cast<std::uint64_t>(each.relation));
        appendNumber(text, each.isSecondOperand);
        appendNumber(text, each.isRepeated);
    }
    appendNumber(text, static_cast<std::uint64_t>(joined + 1));
    appendNumber(text, static_cast<std::uint64_t>(byDistance));
    appendNumber(text, limit);
    appendNumber(text, offset);
    appendNumber(text, static_cast<std::uint64_t>(ordering));
    appendNumber(text, order.size());
    for (const Order& each : order) {
        appendNumber(text, static_cast<std::uint64_t>(each.column));
        appendNumber(text, each.isDescending);
    }
    for (const Term& term : terms) {
        appendNumber(text, static_cast<std::uint64_t>(term.column));
        appendNumber(text, static_cast<std::uint64_t>(term.comparison));
        appendNumber(text, static_cast<std::uint64_t>(term.collation));
    }
    return text;
}

ScanPlan ScanPlan::fromText(std::string_view text) {
    ScanPlan plan;
    plan.number = takeNumber(text);
    plan.columnsUsed = takeNumber(text);
    plan.rowNumber = static_cast<RowNumber>(takeNumber(text));
    for (std::uint64_t left = takeNumber(text); left > 0 && !text.empty(); --left) {
        Relation& each = plan.relations.emplace_back();
        each.relation = static_cast<SpatialRelation>(takeNumber(text));
        each.isSecondOperand = takeNumber(text) != 0;
        each.isRepeated = takeNumber(text) != 0;
    }
    plan.joined = static_cast<int>(takeNumber(text)) - 1;
    plan.byDistance = static_cast<ByDistance>(takeNumber(text));
    plan.limit = takeNumber(text) != 0;
    plan.offset = takeNumber(text) != 0;
    plan.ordering = static_cast<Ordering>(takeNumber(text));
    for (std::uint64_t left = takeNumber(text); left > 0 && !text.empty(); --left) {
        Order& each = plan.order.emplace_back();
        each.column = static_cast<int>(takeNumber(text));
        each.isDescending = takeNumber(text) != 0;
    }
    while (!text.empty()) {
        Term term;
        term.column = static_cast<int>(takeNumber(text));
        term.comparison = static_cast<dp::Comparison>(takeNumber(text));
        term.collation = static_cast<dp::TextCollation>(takeNumber(text));
        plan.terms.push_back(term);
    }
    return plan;
}

} // namespace orvane::adaptor
