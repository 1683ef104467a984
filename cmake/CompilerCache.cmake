# ccache where there is one: JUCE takes minutes to compile and never changes.
find_program (LARKSPIRE_CCACHE ccache)

if (LARKSPIRE_CCACHE)
    set (CMAKE_C_COMPILER_LAUNCHER "${CMAKE_SOURCE_DIR}/scripts/ccache-launcher")
    set (CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_SOURCE_DIR}/scripts/ccache-launcher")
endif ()
