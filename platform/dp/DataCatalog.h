#pragma once

#include "platform/dp/DataObject.h"

#include <QList>
#include <QObject>

#include <memory>

namespace orvane::dp {

/// The open data objects of the application, by name; names differ in more than letter case.
/// A service of the core. Used from the thread it lives on.
class ORVANE_PLATFORM_EXPORT DataCatalog : public QObject {
    Q_OBJECT
public:
    explicit DataCatalog(QObject* parent = nullptr);
    ~DataCatalog() override;

    /// In the order in which they were added.
    virtual QList<std::shared_ptr<DataObject>> dataObjects() const;
    /// The object of that name, letter case ignored; null when there is none.
    virtual std::shared_ptr<DataObject> dataObject(const QString& name) const;

    /// Adds an object and emits dataObjectAdded. False, and nothing happens, when it is null or its name is
    /// taken.
    bool add(const std::shared_ptr<DataObject>& object);
    /// Asks the users of the object to let go (DataObject::requestClose), removes it and emits
    /// dataObjectRemoved.
    bool close(const QString& name);
    /// Gives an object a new name and emits dataObjectRenamed. False when there is no such object or the new
    /// name is taken.
    bool rename(const QString& oldName, const QString& newName);

    /// `wanted`, or with the smallest number from 2 appended after "_" that makes it free.
    QString freeName(const QString& wanted) const;

Q_SIGNALS:
    void dataObjectAdded(orvane::dp::DataObject* object);
    void dataObjectRemoved(const QString& name);
    void dataObjectRenamed(const QString& oldName, const QString& newName);

private:
    QList<std::shared_ptr<DataObject>> objects_;
};

} // namespace orvane::dp
