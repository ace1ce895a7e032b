#include "platform/dp/DataObject.h"

#include <algorithm>
#include <utility>

namespace orvane::dp {

DataObject::DataObject(QString name) : name_(std::move(name)) {}

DataObject::~DataObject() = default;

void DataObject::setName(const QString& name) {
    if (name == name_) {
        return;
    }
    const QString newName = name; // the listeners may change what `name` refers to
    const QString oldName = std::exchange(name_, newName);
    Q_EMIT nameChanged(oldName, newName);
}

std::shared_ptr<DataObject> DataObject::underlyingObject() const {
    return std::const_pointer_cast<DataObject>(weak_from_this().lock());
}

void DataObject::requestClose() {
    Q_EMIT closeRequested();
}

QString DataObject::makeValidObjectName(const QString& name) {
    QString valid = name;
    const auto isControl = [](QChar character) { return character.category() == QChar::Other_Control; };
    valid.truncate(static_cast<int>(std::remove_if(valid.begin(), valid.end(), isControl) - valid.begin()));
    valid = valid.trimmed();
    return valid.isEmpty() ? QStringLiteral("table") : valid;
}

} // namespace orvane::dp
