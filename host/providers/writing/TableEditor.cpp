#include "host/providers/writing/TableEditor.h"

#include "platform/dp/Table.h"
#include "platform/work/Cancellation.h"

#include <stdexcept>

namespace orvane::files {

namespace {

/// Runs an operation of the group; what it throws becomes an edit error.
template<class Work>
void orEditError(Work work) {
    try {
        work();
    } catch (const work::Cancelled&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw dp::EditError(error.what());
    }
}

} // namespace

TableEditor::~TableEditor() = default;

void TableEditor::begin() {
    orEditError([this] { edit_ = startEdit(); });
}

void TableEditor::setSavepoint(int number) {
    orEditError([&] { edit_->setSavepoint(number); });
}

void TableEditor::releaseSavepoint(int number) {
    orEditError([&] { edit_->releaseSavepoint(number); });
}

void TableEditor::rollbackTo(int number) {
    orEditError([&] { edit_->rollbackTo(number); });
}

void TableEditor::prepare() {
    orEditError([this] { edit_->prepare(); });
}

void TableEditor::commit() noexcept {
    if (edit_) {
        edit_->commit();
    }
    edit_.reset();
}

void TableEditor::rollback() noexcept {
    if (edit_) {
        edit_->rollback();
    }
    edit_.reset();
}

void TableEditor::flush() {
    orEditError([this] { edit_->flush(); });
}

void TableEditor::beforeChange() {
    if (!edit_ || edit_->isEnded()) { // the group is back at its beginning
        begin();
    }
    orEditError([this] { edit_->beforeChange(); });
}

void TableEditor::end() {
    prepare();
    commit();
}

} // namespace orvane::files
