// Version queries and hook installers.
#include "vemoprepro/frame.h"

#include "frame/memory.h"
#include "frame/version.h"

using frame::hooks;
using frame::kDefaultHooks;

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
    hooks.malloc_hook = hook != nullptr ? hook : kDefaultHooks.malloc_hook;
}

void prepro_redefine_realloc(prepro_realloc_hook hook) {
    hooks.realloc_hook = hook != nullptr ? hook : kDefaultHooks.realloc_hook;
}

void prepro_redefine_free(prepro_free_hook hook) {
    hooks.free_hook = hook != nullptr ? hook : kDefaultHooks.free_hook;
}

void prepro_redefine_aligned_malloc(prepro_aligned_malloc_hook hook) {
    hooks.aligned_malloc_hook = hook != nullptr ? hook : kDefaultHooks.aligned_malloc_hook;
}

void prepro_redefine_aligned_free(prepro_aligned_free_hook hook) {
    hooks.aligned_free_hook = hook != nullptr ? hook : kDefaultHooks.aligned_free_hook;
}

void prepro_redefine_gpu_malloc(prepro_gpu_malloc_hook hook) {
    hooks.gpu_malloc_hook = hook != nullptr ? hook : kDefaultHooks.gpu_malloc_hook;
}

void prepro_redefine_gpu_free(prepro_gpu_free_hook hook) {
    hooks.gpu_free_hook = hook != nullptr ? hook : kDefaultHooks.gpu_free_hook;
}
