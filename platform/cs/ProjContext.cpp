#include "platform/cs/ProjContext.h"

#include "platform/cs/ProjFiles.h"

namespace orvane::cs {

std::shared_ptr<PJ_CONTEXT> projContext() {
    thread_local const std::shared_ptr<PJ_CONTEXT> context = [] {
        std::shared_ptr<PJ_CONTEXT> made(proj_context_create(), ProjContextDeleter());
        keepToResourceFolders(made.get());
        proj_log_level(made.get(), PJ_LOG_NONE);
        return made;
    }();
    return context;
}

} // namespace orvane::cs
