#include "host/adaptor/scanning/TermFilter.h"

#include "platform/dp/ValueOrder.h"

#include <algorithm>
#include <cmath>

namespace orvane::adaptor {

namespace {

using dp::Cell;
using dp::cellOf;
using dp::CellType;
using dp::compareFolded;
using dp::Comparison;
using dp::foldAscii;
using dp::ScanTerm;
using dp::TextCollation;

/// In lists with more operands that no look-up serves leave the row to SQLite, which searches a sorted list.
constexpr std::size_t scannedOperands = 32;

bool isNumber(const dp::ScanValue& value) {
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value);
}

bool holds(Comparison comparison, int order) {
    switch (comparison) {
    case Comparison::Equal:
    case Comparison::Is: return order == 0;
    case Comparison::NotEqual:
    case Comparison::IsNot: return order != 0;
    case Comparison::Greater: return order > 0;
    case Comparison::GreaterOrEqual: return order >= 0;
    case Comparison::Less: return order < 0;
    case Comparison::LessOrEqual: return order <= 0;
    default: return true;
    }
}

bool isOrdering(Comparison comparison) {
    return comparison == Comparison::Greater || comparison == Comparison::GreaterOrEqual ||
           comparison == Comparison::Less || comparison == Comparison::LessOrEqual;
}

/// Whether the comparison is true or false also for NULL.
bool isNullTest(Comparison comparison) {
    return comparison == Comparison::Is || comparison == Comparison::IsNot ||
           comparison == Comparison::IsNull || comparison == Comparison::IsNotNull;
}

} // namespace

void TermFilter::assign(std::span<const ScanTerm> terms) {
    terms_ = terms;
    lists_.clear();
    lists_.resize(terms.size());
    matchesNothing_ = false;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        const ScanTerm& term = terms[i];
        if (term.comparison == Comparison::In) {
            lists_[i] = std::make_unique<InList>(arrange(term));
        } else if (!term.operands.empty() && std::holds_alternative<std::monostate>(term.operands.front()) &&
                   !isNullTest(term.comparison)) {
            matchesNothing_ = true;
        }
    }
}

TermFilter::InList TermFilter::arrange(const ScanTerm& term) {
    InList list;
    for (const dp::ScanValue& operand : term.operands) {
        if (const auto* integer = std::get_if<std::int64_t>(&operand)) {
            list.integers.push_back(*integer);
        } else if (const auto* real = std::get_if<double>(&operand)) {
            list.reals.push_back(*real);
        } else if (const auto* text = std::get_if<std::string>(&operand)) {
            if (makeKey(term.collation, *text)) {
                list.keyedTexts.emplace(key_, *text);
            } else {
                list.otherTexts.push_back(*text);
            }
        }
    }
    std::sort(list.integers.begin(), list.integers.end());
    std::sort(list.reals.begin(), list.reals.end());
    return list;
}

/// Writes a key that texts share when they are equal; false for a text whose equals only a comparison finds.
bool TermFilter::makeKey(TextCollation collation, std::string_view text) {
    if (collation == TextCollation::Locale) {
        return locale().plainKey(text, key_);
    }
    key_.assign(text);
    if (collation == TextCollation::NoCase) {
        std::transform(key_.begin(), key_.end(), key_.begin(), foldAscii);
    }
    return true;
}

bool TermFilter::accepts(dp::Cursor& cursor) {
    for (std::size_t i = 0; i < terms_.size(); ++i) {
        if (!accepts(terms_[i], cursor.cell(terms_[i].attribute), lists_[i].get())) {
            return false;
        }
    }
    return true;
}

bool TermFilter::accepts(const ScanTerm& term, const Cell& cell, const InList* list) {
    const bool null = isNull(cell);
    switch (term.comparison) {
    case Comparison::IsNull: return null;
    case Comparison::IsNotNull: return !null;
    case Comparison::Like:
    case Comparison::Glob: return !null;
    case Comparison::In: return !null && inList(term, cell, *list);
    default: break;
    }
    const dp::ScanValue& operand = term.operands.front();
    const bool operandNull = std::holds_alternative<std::monostate>(operand);
    if (term.comparison == Comparison::Is || term.comparison == Comparison::IsNot) {
        if (null || operandNull) {
            return (null && operandNull) == (term.comparison == Comparison::Is);
        }
    } else if (null) {
        return false;
    }
    if (isNumber(cell) && isNumber(operand)) {
        return holds(term.comparison, compareNumbers(cell, cellOf(operand)));
    }
    const auto* text = std::get_if<std::string>(&operand);
    if (cell.type() != CellType::Text || !text) {
        return true;
    }
    if (isOrdering(term.comparison)) {
        return holds(term.comparison, compareTexts(term.collation, cell.view(), *text));
    }
    return holds(term.comparison, equalTexts(term.collation, cell.view(), *text) ? 0 : 1);
}

bool TermFilter::inList(const ScanTerm& term, const Cell& cell, const InList& list) {
    if (cell.type() == CellType::Text) {
        // A number in the list is compared with the text by rules that only SQLite knows the operands of.
        return !list.integers.empty() || !list.reals.empty() || inTextList(term, cell.view(), list);
    }
    if (!isNumber(cell) || !list.keyedTexts.empty() || !list.otherTexts.empty()) {
        return true;
    }
    if (cell.type() == CellType::Integer) {
        return std::binary_search(list.integers.begin(), list.integers.end(), cell.integer()) ||
               std::any_of(list.reals.begin(), list.reals.end(),
                           [&cell](double real) { return compareNumbers(cell, Cell::ofReal(real)) == 0; });
    }
    return std::binary_search(list.reals.begin(), list.reals.end(), cell.real()) ||
           std::any_of(list.integers.begin(), list.integers.end(), [&cell](std::int64_t integer) {
               return compareNumbers(cell, Cell::ofInteger(integer)) == 0;
           });
}

bool TermFilter::inTextList(const ScanTerm& term, std::string_view text, const InList& list) {
    const auto equalsText = [&](std::string_view operand) {
        return equalTexts(term.collation, text, operand);
    };
    if (makeKey(term.collation, text)) {
        if (list.keyedTexts.count(key_) != 0) {
            return true;
        }
    } else if (list.keyedTexts.size() > scannedOperands ||
               std::any_of(list.keyedTexts.begin(), list.keyedTexts.end(),
                           [&](const auto& keyed) { return equalsText(keyed.second); })) {
        return true;
    }
    return list.otherTexts.size() > scannedOperands ||
           std::any_of(list.otherTexts.begin(), list.otherTexts.end(), equalsText);
}

const engine::LocaleOrder& TermFilter::locale() {
    if (!locale_) {
        locale_ = engine::LocaleOrder::current();
    }
    return *locale_;
}

int TermFilter::compareTexts(TextCollation collation, std::string_view a, std::string_view b) {
    switch (collation) {
    case TextCollation::Binary: return a.compare(b);
    case TextCollation::NoCase: return compareFolded(a, b);
    case TextCollation::Locale: return locale().compare(a, b);
    }
    return 0;
}

bool TermFilter::equalTexts(TextCollation collation, std::string_view a, std::string_view b) {
    switch (collation) {
    case TextCollation::Binary: return a == b;
    case TextCollation::NoCase: return a.size() == b.size() && compareFolded(a, b) == 0;
    case TextCollation::Locale: return locale().equal(a, b);
    }
    return false;
}

} // namespace orvane::adaptor
