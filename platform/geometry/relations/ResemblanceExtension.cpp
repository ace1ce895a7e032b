#include "platform/geometry/relations/ResemblanceExtension.h"

namespace orvane::geometry {

ResemblanceExtension::ResemblanceExtension(QObject* parent) : QObject(parent) {}
ResemblanceExtension::~ResemblanceExtension() = default;
void ResemblanceExtension::adjustSetup(Setup&) {}

} // namespace orvane::geometry
