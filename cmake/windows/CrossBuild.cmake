# What Debian's MinGW compiler needs to build JUCE for Windows, none of which touches JUCE's files. A
# native compiler on Windows needs nothing of it and does not come here.
include_guard ()
set (LARKSPIRE_CROSS_BUILD OFF)

if (NOT (CMAKE_CROSSCOMPILING AND MINGW))
    return ()
endif ()

set (LARKSPIRE_CROSS_BUILD ON)
set (LARKSPIRE_CROSS_COMPAT "${CMAKE_CURRENT_LIST_DIR}/compat")

# For every file that is compiled, JUCE's too: its headers come before the system's.
include_directories (BEFORE SYSTEM "${LARKSPIRE_CROSS_COMPAT}")
include_directories (SYSTEM "${LARKSPIRE_WINDOWS_DEPS}/codecs/include")

add_compile_definitions (
    JUCE_64BIT=1                                # JUCE takes its word size from another compiler's macro
    JUCE_DONT_AUTOLINK_TO_WIN32_LIBRARIES=1     # "#pragma comment (lib)" does nothing here; the list stands below
    JUCE_USE_WINDOWS_MEDIA_FORMAT=0             # its header is another compiler's
    _WIN32_WINNT=0x0A00)

add_compile_options (
    $<$<COMPILE_LANGUAGE:C,CXX>:-U__MINGW32__>  # JUCE refuses to go on where it sees this macro
    "$<$<COMPILE_LANGUAGE:CXX>:SHELL:-include ${LARKSPIRE_CROSS_COMPAT}/mingw_compat.h>"
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wa,-mbig-obj>  # more sections than the ordinary object format can number
    $<$<COMPILE_LANGUAGE:C,CXX>:-ffunction-sections>
    $<$<COMPILE_LANGUAGE:C,CXX>:-fdata-sections>)

add_library (larkspire-windows-system INTERFACE)
target_link_directories (larkspire-windows-system INTERFACE "${LARKSPIRE_WINDOWS_DEPS}/codecs/lib")
target_link_libraries (larkspire-windows-system INTERFACE
    png16 z
    dwrite d2d1 dxgi d3d11 dcomp dxguid dwmapi imm32 comctl32 comdlg32 vfw32 wininet ws2_32 version shlwapi winmm
    dbghelp sapi ole32 oleaut32 uuid shell32 gdi32 user32 advapi32 kernel32)
