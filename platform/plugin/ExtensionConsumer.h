#pragma once

#include "platform/Export.h"

#include <QObject>
#include <QPointer>

namespace orvane::plugin {

/// Is offered every extension of the application and takes those it knows.
class ORVANE_PLATFORM_EXPORT ExtensionConsumer {
public:
    ExtensionConsumer() = default;
    virtual ~ExtensionConsumer();
    ExtensionConsumer(const ExtensionConsumer&) = delete;
    ExtensionConsumer& operator=(const ExtensionConsumer&) = delete;

    virtual void offer(QObject* extension) = 0;
};

/// Hands extensions of one type to `Owner::registerExtension(ExtensionType*)` for as long as the owner lives.
/// Objects of other types are ignored.
template<typename ExtensionType, typename Owner>
class ExtensionConsumerAdapter : public ExtensionConsumer {
public:
    explicit ExtensionConsumerAdapter(QPointer<Owner> owner) : owner_(std::move(owner)) {}

    void offer(QObject* extension) override {
        if (!owner_) {
            return;
        }
        if (auto* known = qobject_cast<ExtensionType*>(extension)) {
            owner_->registerExtension(known);
        }
    }

private:
    QPointer<Owner> owner_;
};

} // namespace orvane::plugin
