#include <orvane/engine/TableManagement.h>

namespace orvane::engine {

TableManagement::TableManagement() = default;
TableManagement::~TableManagement() = default;

QString TableManagement::tableName() const {
    return {};
}

QString TableManagement::newName() const {
    return newName_;
}

void TableManagement::setNewName(QString name) {
    newName_ = std::move(name);
}

} // namespace orvane::engine
