#pragma once

#include "host/providers/datasets/FileEdit.h"
#include "platform/dp/Feature.h"

#include <memory>
#include <type_traits>
#include <vector>

namespace orvane::files {

/// Writes features to a table of a file, in a group of edits that all tables of the file share, or each edit
/// in a group of its own. Every failure is a dp::EditError, or work::Cancelled. Used from one thread at a
/// time.
class TableEditor {
public:
    virtual ~TableEditor();

    /// Whether the format, or the permissions of the file, allow no edit of any kind.
    virtual bool isReadOnly() = 0;

    /// The group: as the operations of dp::Table.
    void begin();
    void setSavepoint(int number);
    void releaseSavepoint(int number);
    void rollbackTo(int number);
    void prepare();
    void commit() noexcept;
    void rollback() noexcept;
    bool isInGroup() const { return edit_ != nullptr; }
    /// Lets readers find what was changed in the group so far.
    void flush();

    virtual std::int64_t insert(const dp::Feature& feature) = 0;
    /// Writes the attributes at these positions; the others stay.
    virtual void update(const dp::Feature& feature, const std::vector<int>& positions) = 0;
    virtual void remove(const dp::FeatureId& id) = 0;

protected:
    /// The group under way on the file, or else a new one. Throws std::runtime_error.
    virtual std::shared_ptr<FileEdit> startEdit() = 0;

    /// Runs a change inside the group, or a group of its own.
    template<class Change>
    std::invoke_result_t<Change> inGroup(Change change) {
        const bool isAlone = !edit_;
        beforeChange();
        try {
            const auto result = change();
            if (isAlone) {
                end();
            }
            return result;
        } catch (...) {
            if (isAlone) {
                rollback();
            }
            throw;
        }
    }
    FileEdit& edit() const { return *edit_; }

private:
    void beforeChange();
    void end();

    std::shared_ptr<FileEdit> edit_; ///< null outside a group
};

} // namespace orvane::files
