#include "platform/di/HasDependencies.h"

namespace orvane::di {

HasDependencies::HasDependencies() = default;
HasDependencies::~HasDependencies() = default;

} // namespace orvane::di
