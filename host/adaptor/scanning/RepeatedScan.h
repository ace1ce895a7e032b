#pragma once

#include "host/adaptor/declaration/TableDeclaration.h"
#include "host/adaptor/indices/IndexUse.h"
#include "host/adaptor/rows/ArrangedRows.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace orvane::adaptor {

/// The scans that one cursor makes again and again with other operands, as the inner side of a join does.
/// Once they have cost what reading the rows once and for all would have, the rows are kept in memory,
/// arranged by an attribute that is tested for equality, up to `mostBytes`. They go with the cursor, that is
/// with the statement. In a large table an attribute index, which stays, comes first; its rows are kept where
/// look-ups in the index find too many.
class RepeatedScan {
public:
    static constexpr std::size_t mostBytes = std::size_t{128} << 20;

    explicit RepeatedScan(const TableDeclaration& declaration) : declaration_(declaration) {}

    /// The rows that can satisfy the terms of a request, perhaps more, valid until the next call; null when
    /// they are not kept. Throws std::runtime_error when the table cannot be read.
    dp::Cursor* find(dp::Table& table, const dp::ScanRequest& request,
                     const work::Cancellation& cancellation);

    /// Counts a scan over the table, which the source's own index may have shortened, or a look-up that found
    /// so many rows.
    void countScan(const dp::Table& table, IndexUse::Outcome index, bool isLookedUp);
    void countLookup(std::size_t rows);

    /// Whether the rows are in memory.
    bool isKept() const { return rows_.has_value(); }
    /// For another plan: forgets everything.
    void restart();

private:
    bool isUsable(const dp::ScanTerm& term) const;
    bool keep(dp::Table& table, const dp::ScanRequest& request, const work::Cancellation& cancellation);

    const TableDeclaration& declaration_;
    double spent_ = 0; ///< on scans and look-ups, in nanoseconds
    bool isGivenUp_ = false;
    bool mayBeLarge_ = false; ///< no index will answer
    std::optional<ArrangedRows> rows_;
    ArrangedRows::Key key_; ///< of rows_
    ArrangedCursor cursor_;
};

} // namespace orvane::adaptor
