#include "platform/dp/DataCatalog.h"

#include <algorithm>

namespace orvane::dp {

DataCatalog::DataCatalog(QObject* parent) : QObject(parent) {}

DataCatalog::~DataCatalog() = default;

QList<std::shared_ptr<DataObject>> DataCatalog::dataObjects() const {
    return objects_;
}

std::shared_ptr<DataObject> DataCatalog::dataObject(const QString& name) const {
    const auto found = std::find_if(objects_.begin(), objects_.end(), [&name](const auto& object) {
        return object->name().compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == objects_.end() ? nullptr : *found;
}

bool DataCatalog::add(const std::shared_ptr<DataObject>& object) {
    if (!object || dataObject(object->name())) {
        return false;
    }
    objects_.append(object);
    connect(object.get(), &DataObject::nameChanged, this, &DataCatalog::dataObjectRenamed);
    Q_EMIT dataObjectAdded(object.get());
    return true;
}

bool DataCatalog::close(const QString& name) {
    const std::shared_ptr<DataObject> object = dataObject(name);
    if (!object) {
        return false;
    }
    object->requestClose();
    if (objects_.removeOne(object)) { // unless one of its users has closed it already
        disconnect(object.get(), nullptr, this, nullptr);
        Q_EMIT dataObjectRemoved(object->name());
    }
    return true;
}

bool DataCatalog::rename(const QString& oldName, const QString& newName) {
    const std::shared_ptr<DataObject> object = dataObject(oldName);
    const std::shared_ptr<DataObject> holder = dataObject(newName);
    if (!object || newName.isEmpty() || (holder && holder != object)) {
        return false;
    }
    object->setName(newName);
    return true;
}

QString DataCatalog::freeName(const QString& wanted) const {
    QString name = wanted;
    for (int number = 2; dataObject(name); ++number) {
        name = wanted + QLatin1Char('_') + QString::number(number);
    }
    return name;
}

} // namespace orvane::dp
