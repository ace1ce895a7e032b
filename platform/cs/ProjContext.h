#pragma once

#include <proj.h>

#include <memory>

namespace orvane::cs {

struct ProjContextDeleter {
    void operator()(PJ_CONTEXT* context) const { proj_context_destroy(context); }
};
struct ProjDeleter {
    void operator()(PJ* object) const { proj_destroy(object); }
};
using ProjPtr = std::unique_ptr<PJ, ProjDeleter>;

/// The PROJ context of the calling thread, made on first use. Silent: failures are read from results.
/// Whatever belongs to the context keeps this pointer, so that it may outlive the thread.
std::shared_ptr<PJ_CONTEXT> projContext();

} // namespace orvane::cs
