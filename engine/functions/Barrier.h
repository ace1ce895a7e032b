#pragma once

#include <sqlite3.h>

#include <exception>
#include <new>

namespace orvane::engine {

/// Runs the body of an SQL function; whatever it throws becomes the statement's error, since nothing may
/// leave through SQLite's frames.
template<typename Body>
void barrier(sqlite3_context* context, Body&& body) noexcept {
    try {
        body();
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception& failure) {
        sqlite3_result_error(context, failure.what(), -1);
    } catch (...) {
        sqlite3_result_error(context, "Unknown failure", -1);
    }
}

} // namespace orvane::engine
