#include "engine/expression/FeatureRowModule.h"

#include <QString>

#include <sqlite3.h>

#include <charconv>
#include <cmath>
#include <new>
#include <system_error>

// The callbacks of SQLite's virtual-table interface, under SQLite's names, for a table of at most one row.

namespace orvane::engine {

namespace {

using Column = FeatureRow::Column;
using State = FeatureRow::State;

struct RowTable : sqlite3_vtab {
    explicit RowTable(std::shared_ptr<State> shown) : sqlite3_vtab{}, state(std::move(shown)) {}
    std::shared_ptr<State> state;
};

struct RowCursor : sqlite3_vtab_cursor {
    RowCursor() : sqlite3_vtab_cursor{} {}
    bool atEnd = true;
};

State& stateOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<RowTable*>(cursor->pVtab)->state;
}

bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Reads the whole of a text, but for blanks around, as a decimal number.
template<class Number>
bool readWhole(std::string_view text, Number& number) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

void setInteger(sqlite3_context* context, qint64 number, Column::Affinity affinity) {
    if (affinity == Column::Real) {
        sqlite3_result_double(context, static_cast<double>(number));
    } else if (affinity == Column::Text) {
        const QByteArray text = QByteArray::number(number);
        sqlite3_result_text(context, text.constData(), text.size(), SQLITE_TRANSIENT);
    } else {
        sqlite3_result_int64(context, number);
    }
}

void setReal(sqlite3_context* context, double number, Column::Affinity affinity) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (affinity == Column::Text) {
        char* const text = sqlite3_mprintf("%!.15g", number);
        sqlite3_result_text(context, text, -1, sqlite3_free);
    } else if ((affinity == Column::Integer || affinity == Column::Numeric) && number > -limit &&
               number < limit && number == std::trunc(number)) {
        sqlite3_result_int64(context, static_cast<qint64>(number));
    } else {
        sqlite3_result_double(context, number);
    }
}

/// A text that is a number becomes that number in a column of numbers.
bool setNumberInText(sqlite3_context* context, const QString& text, Column::Affinity affinity) {
    const QByteArray bytes = text.toLatin1();
    std::string_view digits(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    while (!digits.empty() && isBlank(digits.front())) {
        digits.remove_prefix(1);
    }
    while (!digits.empty() && isBlank(digits.back())) {
        digits.remove_suffix(1);
    }
    if (digits.find_first_not_of("+-.0123456789eE") != std::string_view::npos) {
        return false; // also "nan" and "inf"
    }
    if (qint64 integer = 0; readWhole(digits, integer)) {
        setInteger(context, integer, affinity);
        return true;
    }
    if (double real = 0; readWhole(digits, real)) {
        setReal(context, real, affinity);
        return true;
    }
    return false;
}

void setText(sqlite3_context* context, const QString& text, Column::Affinity affinity) {
    const bool isForNumbers =
        affinity == Column::Integer || affinity == Column::Numeric || affinity == Column::Real;
    if (!isForNumbers || !setNumberInText(context, text, affinity)) {
        sqlite3_result_text64(context, reinterpret_cast<const char*>(text.utf16()),
                              static_cast<sqlite3_uint64>(text.size()) * sizeof(char16_t), SQLITE_STATIC,
                              SQLITE_UTF16);
    }
}

/// Sets the result as if the value had been stored in the column.
void setResult(sqlite3_context* context, const QVariant& value, Column::Affinity affinity) {
    if (value.isNull()) {
        return;
    }
    switch (value.userType()) {
    case QMetaType::QString:
        return setText(context, *static_cast<const QString*>(value.constData()), affinity);
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong: return setInteger(context, value.toLongLong(), affinity);
    case QMetaType::Double: return setReal(context, value.toDouble(), affinity);
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return sqlite3_result_blob64(context, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                                     SQLITE_TRANSIENT);
    }
    default: break;
    }
    if (const auto standard = standardValue(value); standard && standard->userType() != value.userType()) {
        return setResult(context, *standard, affinity);
    }
    setText(context, value.toString(), affinity); // an unsigned number that is too large keeps its digits
}

int xConnect(sqlite3* database, void* clientData, int, const char* const*, sqlite3_vtab** result,
             char** message) {
    const auto& state = *static_cast<std::shared_ptr<State>*>(clientData);
    if (const int code = sqlite3_declare_vtab(database, state->declaration.constData()); code != SQLITE_OK) {
        *message = sqlite3_mprintf("%s", sqlite3_errmsg(database));
        return code;
    }
    *result = new (std::nothrow) RowTable(state);
    return *result ? SQLITE_OK : SQLITE_NOMEM;
}

int xDisconnect(sqlite3_vtab* table) {
    delete static_cast<RowTable*>(table);
    return SQLITE_OK;
}

int xBestIndex(sqlite3_vtab*, sqlite3_index_info* info) {
    info->estimatedCost = 1;
    info->estimatedRows = 1;
    return SQLITE_OK;
}

int xOpen(sqlite3_vtab*, sqlite3_vtab_cursor** result) {
    *result = new (std::nothrow) RowCursor;
    return *result ? SQLITE_OK : SQLITE_NOMEM;
}

int xClose(sqlite3_vtab_cursor* cursor) {
    delete static_cast<RowCursor*>(cursor);
    return SQLITE_OK;
}

int xFilter(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value**) {
    static_cast<RowCursor*>(cursor)->atEnd = !stateOf(cursor).hasRow;
    return SQLITE_OK;
}

int xNext(sqlite3_vtab_cursor* cursor) {
    const State& state = stateOf(cursor);
    static_cast<RowCursor*>(cursor)->atEnd = !state.advance || !state.advance();
    return SQLITE_OK;
}

int xEof(sqlite3_vtab_cursor* cursor) {
    return static_cast<RowCursor*>(cursor)->atEnd;
}

int xColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
    const State& state = stateOf(cursor);
    const Column& asked = state.columns[static_cast<std::size_t>(column)];
    if (asked.attribute < 0 || !state.hasRow) {
        return SQLITE_OK; // NULL; a statement that others leave open may outlast the row
    }
    try {
        const QVariant& replacement = state.replacements[static_cast<std::size_t>(asked.attribute)];
        setResult(context, replacement.isValid() ? replacement : state.values.at(asked.attribute),
                  asked.affinity);
        return SQLITE_OK;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
}

int xRowid(sqlite3_vtab_cursor*, sqlite3_int64* rowNumber) {
    *rowNumber = 1;
    return SQLITE_OK;
}

int xRename(sqlite3_vtab*, const char*) {
    return SQLITE_OK;
}

constexpr sqlite3_module rowModule = [] {
    sqlite3_module module{};
    module.xCreate = xConnect;
    module.xConnect = xConnect;
    module.xBestIndex = xBestIndex;
    module.xDisconnect = xDisconnect;
    module.xDestroy = xDisconnect;
    module.xOpen = xOpen;
    module.xClose = xClose;
    module.xFilter = xFilter;
    module.xNext = xNext;
    module.xEof = xEof;
    module.xColumn = xColumn;
    module.xRowid = xRowid;
    module.xRename = xRename;
    return module;
}();

} // namespace

int registerFeatureRow(sqlite3* database, const QByteArray& name, const std::shared_ptr<State>& state) {
    if (!state) {
        return sqlite3_create_module_v2(database, name.constData(), nullptr, nullptr, nullptr);
    }
    return sqlite3_create_module_v2(
        database, name.constData(), &rowModule, new std::shared_ptr<State>(state),
        [](void* clientData) { delete static_cast<std::shared_ptr<State>*>(clientData); });
}

} // namespace orvane::engine
