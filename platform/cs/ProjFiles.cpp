#include "platform/cs/ProjFiles.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <vector>

// The callbacks of PROJ's file interface, in the form that PROJ expects.

namespace orvane::cs {

namespace {

namespace fs = std::filesystem;

/// Without links, so that none leads out.
fs::path resolved(const fs::path& path) {
    std::error_code failure;
    fs::path whole = fs::canonical(path, failure);
    return failure ? fs::path() : whole;
}

std::vector<fs::path> findResourceFolders() {
#ifdef _WIN32
    constexpr char separator = ';';
#else
    constexpr char separator = ':';
#endif
    std::vector<fs::path> folders;
    for (std::string_view paths = proj_info().searchpath; !paths.empty();) {
        const std::size_t end = std::min(paths.find(separator), paths.size());
        if (fs::path folder = resolved(paths.substr(0, end)); !folder.empty()) {
            folders.push_back(std::move(folder));
        }
        paths.remove_prefix(std::min(end + 1, paths.size()));
    }
    return folders;
}

bool isResource(const char* name) {
    static const std::vector<fs::path> folders = findResourceFolders();
    const fs::path path = resolved(name);
    return fs::is_regular_file(path) &&
           std::any_of(folders.begin(), folders.end(), [&path](const fs::path& folder) {
               return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
                      folder.end();
           });
}

std::FILE* file(PROJ_FILE_HANDLE* handle) {
    return reinterpret_cast<std::FILE*>(handle);
}

PROJ_FILE_HANDLE* openResource(PJ_CONTEXT*, const char* name, PROJ_OPEN_ACCESS access, void*) noexcept try {
    const bool isAllowed = access == PROJ_OPEN_ACCESS_READ_ONLY && isResource(name);
    return reinterpret_cast<PROJ_FILE_HANDLE*>(isAllowed ? std::fopen(name, "rb") : nullptr);
} catch (...) {
    return nullptr;
}

std::size_t read(PJ_CONTEXT*, PROJ_FILE_HANDLE* handle, void* buffer, std::size_t size, void*) {
    return std::fread(buffer, 1, size, file(handle));
}

std::size_t write(PJ_CONTEXT*, PROJ_FILE_HANDLE*, const void*, std::size_t, void*) {
    return 0;
}

int seek(PJ_CONTEXT*, PROJ_FILE_HANDLE* handle, long long offset, int whence, void*) {
    return std::fseek(file(handle), static_cast<long>(offset), whence) == 0;
}

unsigned long long tell(PJ_CONTEXT*, PROJ_FILE_HANDLE* handle, void*) {
    return static_cast<unsigned long long>(std::ftell(file(handle)));
}

void close(PJ_CONTEXT*, PROJ_FILE_HANDLE* handle, void*) {
    std::fclose(file(handle));
}

int exists(PJ_CONTEXT*, const char* name, void*) noexcept try { return isResource(name); } catch (...) {
    return 0;
}

int change(PJ_CONTEXT*, const char*, void*) {
    return 0;
}

int rename(PJ_CONTEXT*, const char*, const char*, void*) {
    return 0;
}

constexpr PROJ_FILE_API resourceFiles = {1,     openResource, read,   write,  seek,  tell,
                                         close, exists,       change, change, rename};

} // namespace

void keepToResourceFolders(PJ_CONTEXT* context) {
    proj_context_set_fileapi(context, &resourceFiles, nullptr);
    proj_context_set_enable_network(context, 0);
}

} // namespace orvane::cs
