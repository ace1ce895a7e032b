#include "host/adaptor/scanning/TermFilter.h"

#include <orvane/engine/LocaleOrder.h>

#include <algorithm>

namespace orvane::adaptor {

namespace {

bool hasText(const dp::ScanTerm& term) {
    return std::any_of(term.operands.begin(), term.operands.end(), [](const dp::ScanValue& operand) {
        return std::holds_alternative<std::string>(operand);
    });
}

} // namespace

void TermFilter::assign(std::span<const dp::ScanTerm> terms) {
    tests_.resize(terms.size());
    for (std::size_t i = 0; i < terms.size(); ++i) {
        if (!locale_ && terms[i].collation == dp::TextCollation::Locale && hasText(terms[i])) {
            locale_ = engine::LocaleOrder::current();
        }
        tests_[i].attribute = terms[i].attribute;
        tests_[i].condition.assign(terms[i], locale_);
    }
}

} // namespace orvane::adaptor
