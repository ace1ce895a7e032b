#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"
#include <host/adaptor/Export.h>
#include <orvane/engine/LocaleOrder.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane::adaptor {

/// Checks the terms of a scan on the cells of a cursor, before SQLite sees the row. Where a cell and the
/// operand are both numbers or both texts, the answer is the one SQLite would give, except that a long In
/// list of texts may let too many rows pass; any other pair lets the row pass, and so does a pattern. What
/// passes wrongly is for SQLite to judge.
class ORVANE_ADAPTOR_EXPORT TermFilter {
public:
    /// Takes the terms of the next scan. `terms` must outlive the scan.
    void assign(std::span<const dp::ScanTerm> terms);

    /// Whether no row can match: a comparison with NULL.
    bool matchesNothing() const { return matchesNothing_; }
    bool isEmpty() const { return terms_.empty(); }
    bool accepts(dp::Cursor& cursor);

private:
    /// The operands of an In list, arranged for look-ups.
    struct InList {
        std::vector<std::int64_t> integers; ///< sorted
        std::vector<double> reals;          ///< sorted
        /// Texts by a key that they share with their equals under the collation.
        std::unordered_map<std::string, std::string_view> keyedTexts;
        std::vector<std::string_view> otherTexts;
    };

    InList arrange(const dp::ScanTerm& term);
    bool makeKey(dp::TextCollation collation, std::string_view text);
    bool accepts(const dp::ScanTerm& term, const dp::Cell& cell, const InList* list);
    bool inList(const dp::ScanTerm& term, const dp::Cell& cell, const InList& list);
    bool inTextList(const dp::ScanTerm& term, std::string_view text, const InList& list);
    const engine::LocaleOrder& locale();
    int compareTexts(dp::TextCollation collation, std::string_view a, std::string_view b);
    bool equalTexts(dp::TextCollation collation, std::string_view a, std::string_view b);

    std::span<const dp::ScanTerm> terms_;
    std::vector<std::unique_ptr<InList>> lists_; ///< parallel to the terms; null where the term is no In list
    std::shared_ptr<const engine::LocaleOrder> locale_; ///< null until texts are compared under Locale
    std::string key_;                                   ///< of the last text, reused
    bool matchesNothing_ = false;
};

} // namespace orvane::adaptor
