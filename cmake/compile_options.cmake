# Flags of the whole tree.
#
# Results are fixed to the bit, so floating-point contraction is off everywhere and no fast-math flag may
# be added. Vector code is compiled for several instruction sets by Highway and chosen at run time; the
# rest of the tree stays at the platform's baseline and one binary runs on all machines named below.
#
# The library defines the plain allocation operators only; without the sized forms, what it allocates
# through them goes back through them directly.

add_library(vemoprepro_options INTERFACE)
target_compile_options(vemoprepro_options INTERFACE
    -ffp-contract=off $<$<COMPILE_LANGUAGE:CXX>:-fno-sized-deallocation> -Wall -Wextra -Wconversion -Wsign-conversion -Wshadow)
# SSE4.2 with AES and carry-less multiplication is the least that x86-64 machines of the last fifteen years
# have. It is the least that the kernels are compiled for, too: with these definitions Highway makes no scalar
# form, so the library does not run on older machines.
target_compile_definitions(vemoprepro_options INTERFACE HWY_WANT_SSE4=1 HWY_WANT_AVX3_DL=1)
# On AArch64 it is NEON: the kernels keep vectors in arrays and structures, which the vectors of SVE, whose
# length the compiler does not know, cannot be kept in.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    target_compile_definitions(vemoprepro_options INTERFACE
        "HWY_DISABLED_TARGETS=(HWY_SVE|HWY_SVE2|HWY_SVE_256|HWY_SVE2_128)")
endif()

if(VEMOPREPRO_SANITIZE)
    add_compile_options(-fsanitize=${VEMOPREPRO_SANITIZE} -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VEMOPREPRO_SANITIZE})
endif()
if(VEMOPREPRO_SANITIZE MATCHES "thread")
    # Asio's fences between threads are doubled by its locks, which the sanitizer does see.
    add_compile_options(-Wno-tsan)
endif()
