#pragma once

#include "host/postgres/description/ValueKind.h"
#include "platform/dp/Cursor.h"

#include <string>
#include <string_view>

namespace orvane::postgres {

/// A value in the server's binary form as a cell. Texts and bytes are shown where they lie; what is converted
/// goes into `memory`. Bytes that are no value of the kind give NULL.
dp::Cell cellOfServerValue(ValueKind kind, std::string_view bytes, std::string& memory);

/// The place of a row in its table (type tid) as a number: its page above 16 bits, its position there below.
std::int64_t placeOfRow(std::string_view bytes);

} // namespace orvane::postgres
