// The loading of OpenBLAS. A contestant has one thread, like the library.
#include "openblas.h"

#include <dlfcn.h>

namespace bench {

namespace {

constexpr const char *file_name = "libopenblas.so.0";

template <class Function> Function *function(void *library, const char *name) {
    return reinterpret_cast<Function *>(dlsym(library, name));
}

void *load() {
    void *const library = dlopen(file_name, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return nullptr;
    if (auto *const set_threads = function<void(int)>(library, "openblas_set_num_threads"))
        set_threads(1);
    return library;
}

void *library() {
    static void *const loaded = load();
    return loaded;
}

} // namespace

Gemm *openblas(const char *name) {
    return library() == nullptr ? nullptr : function<Gemm>(library(), name);
}

std::string openblas_version() {
    if (library() == nullptr) return std::string(file_name) + " was not found: no such times";
    auto *const config = function<const char *()>(library(), "openblas_get_config");
    return config == nullptr ? "OpenBLAS of an unknown version" : config();
}

} // namespace bench
