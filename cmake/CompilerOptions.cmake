# Language, warnings and sanitizers: the same for every target of the tree.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
# By hand, since CMake gives programs -fPIE instead, and precompiled headers fit one of the two.
add_compile_options(-fPIC)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Assertions stay on in every build: a show device is debugged from what it says at night.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1")

# A unity build compiles up to eight sources of a folder as one, which takes a fifth of the time; sources keep their names
# apart for it. The warning takes a source that is included for a header.
if(CMAKE_UNITY_BUILD)
    add_compile_options(-Wno-subobject-linkage)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)

set(CALVERIN_SANITIZE "" CACHE STRING "Sanitizers for the whole tree, as -fsanitize takes them")
if(CALVERIN_SANITIZE)
    # The checks multiply the code: at -O2 it takes three times as long to compile.
    set(CMAKE_CXX_FLAGS_RELEASE "-O1 -g1")
    # With its instrumentation in between, the compiler takes values for uninitialised that are not.
    add_compile_options(-fsanitize=${CALVERIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
        -Wno-maybe-uninitialized)
    add_link_options(-fsanitize=${CALVERIN_SANITIZE})
endif()

# What the sanitizers need at run time, for every test.
set(CALVERIN_SANITIZER_ENVIRONMENT
    "ASAN_OPTIONS=detect_stack_use_after_return=1"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=ignore_noninstrumented_modules=1:suppressions=${CMAKE_SOURCE_DIR}/cmake/tsan.supp")
