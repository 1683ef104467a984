# JUCE, built from its sources, and the interface header that its VST 2 wrapper needs.
set (LARKSPIRE_JUCE "${CMAKE_SOURCE_DIR}/.deps/juce" CACHE PATH "A JUCE 8.0 source tree")
set (LARKSPIRE_VST2_SDK "${CMAKE_SOURCE_DIR}/vst2" CACHE PATH "A folder with pluginterfaces/vst2.x")

if (NOT EXISTS "${LARKSPIRE_JUCE}/CMakeLists.txt")
    message (FATAL_ERROR "No JUCE sources in ${LARKSPIRE_JUCE}: run scripts/setup, or name a JUCE 8.0 tree with -DLARKSPIRE_JUCE=<path>")
endif ()

file (STRINGS "${LARKSPIRE_JUCE}/CMakeLists.txt" juce_project_line REGEX "project *\\(JUCE VERSION")
string (REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" juce_version "${juce_project_line}")

if (NOT juce_version MATCHES "^8\\.0\\.")
    message (FATAL_ERROR "The tree in ${LARKSPIRE_JUCE} is JUCE '${juce_version}', but this project is built on JUCE 8.0")
endif ()

if (NOT EXISTS "${LARKSPIRE_VST2_SDK}/pluginterfaces/vst2.x/aeffectx.h")
    message (FATAL_ERROR "No pluginterfaces/vst2.x/aeffectx.h in ${LARKSPIRE_VST2_SDK} (LARKSPIRE_VST2_SDK)")
endif ()

message (STATUS "JUCE ${juce_version} from ${LARKSPIRE_JUCE}")

# JUCE's helper program is built while configuring, by the compiler that the environment names. The system's own
# serves in every build folder, so that the compiler cache has it after the first.
set (larkspire_c_compiler "$ENV{CC}")
set (larkspire_cxx_compiler "$ENV{CXX}")
unset (ENV{CC})
unset (ENV{CXX})
add_subdirectory ("${LARKSPIRE_JUCE}" "${CMAKE_BINARY_DIR}/juce" EXCLUDE_FROM_ALL SYSTEM)
set (ENV{CC} "${larkspire_c_compiler}")
set (ENV{CXX} "${larkspire_cxx_compiler}")
juce_set_vst2_sdk_path ("${LARKSPIRE_VST2_SDK}")
