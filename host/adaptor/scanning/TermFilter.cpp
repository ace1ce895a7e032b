#include "host/adaptor/scanning/TermFilter.h"

#include <orvane/engine/LocaleOrder.h>

namespace orvane::adaptor {

void TermFilter::assign(std::span<const dp::ScanTerm> terms) {
    tests_.resize(terms.size());
    for (std::size_t i = 0; i < terms.size(); ++i) {
        if (!locale_ && terms[i].collation == dp::TextCollation::Locale) {
            locale_ = engine::LocaleOrder::current();
        }
        tests_[i].attribute = terms[i].attribute;
        tests_[i].condition.assign(terms[i], locale_);
    }
}

} // namespace orvane::adaptor
