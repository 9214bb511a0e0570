// The library defines the plain allocation operators; the sized and aligned forms stay those of the
// runtime, which a sanitizer replaces by its own. A block from the one and to the other is no
// fault.
extern "C" const char* __asan_default_options();

extern "C" const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0";
}
