#include "platform/plugin/Extension.h"

namespace orvane::plugin {

Extension::Extension(QObject* parent) : QObject(parent) {
    for (QObject* ancestor = parent; ancestor; ancestor = ancestor->parent()) {
        if (const auto* provider = dynamic_cast<di::HasDependencies*>(ancestor)) {
            dependencyManager()->follow(provider->dependencyManager());
            break;
        }
    }
}

Extension::~Extension() = default;

} // namespace orvane::plugin
