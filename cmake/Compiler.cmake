# What every translation unit of ours is compiled with, JUCE's modules included: plug-in, tools, tests and
# oracle share one set of flags.
set (CMAKE_CXX_STANDARD 20)
set (CMAKE_CXX_STANDARD_REQUIRED ON)
set (CMAKE_CXX_EXTENSIONS OFF)
set (CMAKE_POSITION_INDEPENDENT_CODE ON)

# The sound is defined by 32-bit floats in a given order; a fused multiply-add or a reordered sum is another sound.
if (MSVC)
    # The chain is written on vector types, which of the compilers with this command line clang-cl knows.
    add_compile_options (/fp:precise $<$<CXX_COMPILER_ID:Clang>:/clang:-ffp-contract=off>)
    set (CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>") # the library carries its runtime inside
else ()
    add_compile_options (-ffp-contract=off -fno-fast-math)
endif ()

# Hosts load many plug-ins into one process: nothing of ours may be seen by, or shared with, another library.
set (CMAKE_C_VISIBILITY_PRESET hidden)
set (CMAKE_CXX_VISIBILITY_PRESET hidden)
set (CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if (CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    # Symbols of the UNIQUE kind are shared between copies of a library, which hangs the second copy in some hosts.
    add_compile_options ($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif ()
