#pragma once

#include "platform/Export.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <vector>

namespace orvane::di {

/// The services that one object knows, and its wishes for services that are still to come. A service is any
/// QObject; it answers to its own class and to every class it derives from. Services are not owned: one that
/// is destroyed is forgotten. Used from the thread it lives on.
class ORVANE_PLATFORM_EXPORT DependencyManager : public QObject {
    Q_OBJECT
public:
    using Provided = std::function<void(QObject* service)>;

    explicit DependencyManager(QObject* parent = nullptr);
    ~DependencyManager() override;

    /// Asks for the service of that class and that class name (see findService). `onProvided` may be empty;
    /// it is called once: at once when the service is known, else when it is provided.
    void addDependency(const QMetaObject* metaObject, const QString& name, Provided onProvided);

    /// The first service of that class name or derived from it; null when there is none.
    QObject* getService(const QString& name) const;

    /// The first service, in the order in which they were provided, that is a `metaObject` and, when the name
    /// is not empty, is of a class of that name or derived from it; null when there is none. A null
    /// meta-object leaves the choice to the name; with neither nothing is found.
    QObject* findService(const QMetaObject* metaObject, const QString& name) const;

    /// Makes a service known. Null and services that are known already are ignored.
    void provide(QObject* service);

    /// Takes over every service that `source` knows and will know. Following twice is following once.
    void follow(const DependencyManager* source);

Q_SIGNALS:
    void serviceProvided(QObject* service);

private:
    struct Wish {
        const QMetaObject* metaObject;
        QString name;
        Provided onProvided;
    };

    QList<QPointer<QObject>> services_;
    std::vector<Wish> wishes_;
};

} // namespace orvane::di
