#pragma once

#include <orvane/engine/Export.h>

namespace orvane::engine {

/// While one lives, what this thread prepares and runs on the engine connection are statements of the engine
/// or of its host, which may do anything; all other statements do what Engine::allowFunctions tells. Made for
/// as short as the statement takes, and never around a text that somebody else wrote.
class ORVANE_ENGINE_EXPORT OwnStatements {
public:
    OwnStatements();
    ~OwnStatements();
    OwnStatements(const OwnStatements&) = delete;
    OwnStatements& operator=(const OwnStatements&) = delete;

    /// Whether one lives on this thread.
    static bool areRun();
};

} // namespace orvane::engine
