#pragma once

#include "platform/core/SqliteException.h"
#include "platform/work/Cancellation.h"

#include <sqlite3.h>

#include <exception>
#include <new>

namespace orvane::err {

/// Runs the work of a callback of a virtual table, which answers with SQLite's code: no exception goes on
/// into SQLite. `message` receives the text for the user.
template<class Work>
int barrier(char** message, Work work) noexcept {
    const auto setMessage = [message](const char* text) {
        sqlite3_free(*message);
        *message = sqlite3_mprintf("%s", text);
    };
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const work::Cancelled& cancelled) {
        setMessage(cancelled.what());
        return SQLITE_INTERRUPT;
    } catch (const SqliteException& exception) {
        if ((exception.code() & 0xff) == SQLITE_NOMEM) {
            return SQLITE_NOMEM;
        }
        setMessage(exception.what());
    } catch (const std::exception& exception) {
        setMessage(exception.what());
    } catch (...) {
        setMessage("Unexpected error");
    }
    return SQLITE_ERROR;
}

template<class Work>
int barrier(sqlite3_vtab_cursor* cursor, Work work) noexcept {
    return barrier(&cursor->pVtab->zErrMsg, work);
}

} // namespace orvane::err
