#pragma once

#include "platform/dp/Feature.h"

#include <cstdint>
#include <vector>

namespace orvane::files {

/// Writes the rows of a table. Outside a group each edit is one. Every failure is a dp::EditError. Used from
/// one thread at a time.
class TableEditor {
public:
    TableEditor() = default;
    virtual ~TableEditor() = default;
    TableEditor(const TableEditor&) = delete;
    TableEditor& operator=(const TableEditor&) = delete;

    /// Whether the format, or the permissions of the file, allow no edit of any kind.
    virtual bool isReadOnly() = 0;

    virtual void begin() = 0;
    virtual void commit() = 0;
    /// Fails where the format has no transactions: what was written stays.
    virtual void rollback() = 0;

    /// The identifier that the row got.
    virtual std::int64_t insert(const dp::Feature& feature) = 0;
    /// Writes the attributes at these positions; the others stay.
    virtual void update(const dp::Feature& feature, const std::vector<int>& positions) = 0;
    virtual void remove(const dp::FeatureId& id) = 0;
};

} // namespace orvane::files
