// Version queries and hook installers.
#include "vemoprepro/frame.h"

#include "frame/memory.h"
#include "frame/version.h"

using frame::HookTable;

namespace {

// Null brings the default back.
template <class Hook>
void install(Hook HookTable::*slot, Hook hook) {
    frame::hooks.*slot = hook != nullptr ? hook : frame::kDefaultHooks.*slot;
}

}  // namespace

const char* prepro_get_version_number(void) {
    return frame::kVersionNumber;
}

const char* prepro_get_branch_name(void) {
    return frame::kBranchName;
}

const char* prepro_get_sha(void) {
    return frame::kSourceRevision;
}

void prepro_redefine_malloc(prepro_malloc_hook hook) {
    install(&HookTable::malloc_hook, hook);
}

void prepro_redefine_realloc(prepro_realloc_hook hook) {
    install(&HookTable::realloc_hook, hook);
}

void prepro_redefine_free(prepro_free_hook hook) {
    install(&HookTable::free_hook, hook);
}

void prepro_redefine_aligned_malloc(prepro_aligned_malloc_hook hook) {
    install(&HookTable::aligned_malloc_hook, hook);
}

void prepro_redefine_aligned_free(prepro_aligned_free_hook hook) {
    install(&HookTable::aligned_free_hook, hook);
}

void prepro_redefine_gpu_malloc(prepro_gpu_malloc_hook hook) {
    install(&HookTable::gpu_malloc_hook, hook);
}

void prepro_redefine_gpu_free(prepro_gpu_free_hook hook) {
    install(&HookTable::gpu_free_hook, hook);
}
