// libRyGenTL.so is the static transport library linked whole; this unit only gives the
// shared object a source of its own and unloads cleanly if the application forgot GCCloseLib.
#include "library.h"

namespace {

struct UnloadGuard {
    // Creating the library state first makes it outlive this guard at unload.
    UnloadGuard() { ry::gentl::TheLibrary(); }
    ~UnloadGuard() {
        ry::gentl::Library& library = ry::gentl::TheLibrary();
        std::lock_guard lock(library.mutex);
        if (library.initialized)
            ry::gentl::CloseEverything();
    }
};

const UnloadGuard unloadGuard;

}  // namespace
