// Loaded into a program before its libraries: from the beginning of an exchange of several files on, it kills
// it at the n-th call that gives a file a name or takes one away. ORVANE_KILL_AT says which.

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <unistd.h>

namespace {

void count(const char* path) {
    static std::atomic<bool> hasBegun{false};
    hasBegun = hasBegun || std::string_view(path).ends_with("/.orvane-exchange");
    if (!hasBegun) {
        return;
    }
    static const char* const given = std::getenv("ORVANE_KILL_AT");
    static const long last = given ? std::atol(given) : 0;
    static std::atomic<long> calls{0};
    if (++calls == last) {
        ::raise(SIGKILL);
    }
}

template<class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int rename(const char* from, const char* to) {
    static auto* const function = next<int(const char*, const char*)>("rename");
    count(to);
    return function(from, to);
}

int link(const char* from, const char* to) {
    static auto* const function = next<int(const char*, const char*)>("link");
    count(to);
    return function(from, to);
}

int unlink(const char* path) {
    static auto* const function = next<int(const char*)>("unlink");
    count(path);
    return function(path);
}
}
