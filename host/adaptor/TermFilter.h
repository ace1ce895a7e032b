#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"
#include <host/adaptor/Export.h>

#include <QCollator>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace orvane::adaptor {

/// Compares UTF-8 texts as the collation "Locale" does, without taking memory per comparison for texts of
/// ordinary length. Not for two threads at once.
class ORVANE_ADAPTOR_EXPORT LocaleComparator {
public:
    LocaleComparator();

    int compare(std::string_view a, std::string_view b);
    bool equal(std::string_view a, std::string_view b);

    /// Whether two texts of printable ASCII are equal exactly when they are equal with letter case folded.
    bool foldsAscii() const { return foldsAscii_; }

private:
    QCollator collator_;
    bool foldsAscii_;
    std::u16string left_, right_; ///< reused for the UTF-16 forms
};

/// Checks the terms of a scan on the cells of a cursor, before SQLite sees the row. Where a cell and the
/// operand are both numbers or both texts, the answer is the one SQLite would give, except that a long In
/// list of texts may let too many rows pass; any other pair lets the row pass. What passes wrongly is for
/// SQLite to judge.
class ORVANE_ADAPTOR_EXPORT TermFilter {
public:
    /// Whether the filter's answer for one operand and a column of that kind of value is SQLite's own, so
    /// that SQLite need not check again.
    static bool isExact(bool textColumn, const dp::ScanValue& operand);

    /// Takes the terms of the next scan. `terms` must outlive the scan.
    void assign(std::span<const dp::ScanTerm> terms);

    /// Whether no row can match: a comparison with NULL.
    bool matchesNothing() const { return matchesNothing_; }
    bool isEmpty() const { return terms_.empty(); }
    bool accepts(dp::Cursor& cursor);

private:
    /// The operands of an In list, arranged for look-ups.
    struct InList {
        std::vector<std::int64_t> integers;         ///< sorted
        std::vector<double> reals;                  ///< sorted
        std::unordered_set<std::string> asciiTexts; ///< folded where the collation folds
        std::vector<std::string_view> otherTexts;
    };

    static InList arrange(const dp::ScanTerm& term, bool foldAscii);
    bool accepts(const dp::ScanTerm& term, const dp::Cell& cell, const InList* list);
    bool inList(const dp::ScanTerm& term, const dp::Cell& cell, const InList& list);
    bool inTextList(const dp::ScanTerm& term, std::string_view text, const InList& list);
    int compareTexts(dp::TextCollation collation, std::string_view a, std::string_view b);
    bool equalTexts(dp::TextCollation collation, std::string_view a, std::string_view b);

    std::span<const dp::ScanTerm> terms_;
    std::vector<std::unique_ptr<InList>> lists_; ///< parallel to the terms; null where the term is no In list
    LocaleComparator locale_;
    std::string folded_; ///< reused for look-ups of folded texts
    bool matchesNothing_ = false;
};

} // namespace orvane::adaptor
