#include "host/postgres/description/TableDescription.h"

#include "platform/utils/Quoting.h"

namespace orvane::postgres {

std::string TableDescription::sqlName() const {
    return utils::sqlIdentifier(schemaName) + '.' + utils::sqlIdentifier(name);
}

} // namespace orvane::postgres
