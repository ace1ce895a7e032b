#pragma once

#include "platform/Export.h"

#include <QObject>
#include <QString>

#include <memory>

namespace orvane::dp {

/// Something that the catalogue holds under a name. Owned by shared pointers. Lives on the thread that made
/// it.
class ORVANE_PLATFORM_EXPORT DataObject : public QObject, public std::enable_shared_from_this<DataObject> {
    Q_OBJECT
public:
    explicit DataObject(QString name);
    ~DataObject() override;

    const QString& name() const { return name_; }
    /// Emits nameChanged when the name differs. The catalogue renames through this.
    void setName(const QString& name);

    /// The object that stands behind this one: itself, unless this one is a view of another.
    virtual std::shared_ptr<DataObject> underlyingObject() const;

    /// Asks everyone who uses the object to let go of it; emits closeRequested.
    void requestClose();

    /// The nearest name that SQL can use without surprises: control characters and surrounding blanks are
    /// removed, an empty name becomes "table".
    static QString makeValidObjectName(const QString& name);

Q_SIGNALS:
    void closeRequested();
    void nameChanged(const QString& oldName, const QString& newName);

private:
    QString name_;
};

} // namespace orvane::dp
