#pragma once

#include <libpq-fe.h>

#include <memory>

namespace orvane::postgres {

struct ConnectionDeleter {
    void operator()(PGconn* connection) const { PQfinish(connection); }
};
struct ResultDeleter {
    void operator()(PGresult* result) const { PQclear(result); }
};
struct OptionsDeleter {
    void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};

using ConnectionHandle = std::unique_ptr<PGconn, ConnectionDeleter>;
using Result = std::unique_ptr<PGresult, ResultDeleter>;
using OptionsHandle = std::unique_ptr<PQconninfoOption, OptionsDeleter>;

} // namespace orvane::postgres
