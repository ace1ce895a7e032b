#include "platform/sql/parsing/SqlRuntime.h"

namespace orvane::sql {

SqlRuntime::SqlRuntime(QObject* parent) : QObject(parent) {}

SqlRuntime::~SqlRuntime() = default;

} // namespace orvane::sql
