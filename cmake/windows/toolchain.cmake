# Cross-building for Windows with Debian 12's compiler. Headers and import libraries of the system are newer than the
# compiler's own (scripts/windows/fetch-headers says why) and replace those.
set (CMAKE_SYSTEM_NAME Windows)
set (CMAKE_SYSTEM_PROCESSOR x86_64)
set (CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set (CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set (CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

cmake_path (SET deps NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../.deps/windows")
set (LARKSPIRE_WINDOWS_DEPS "${deps}" CACHE PATH "What scripts/windows/setup has put there")
list (APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LARKSPIRE_WINDOWS_DEPS)

find_program (windows_compiler ${CMAKE_CXX_COMPILER} NO_CMAKE_SYSTEM_PATH NO_CACHE)

# An indented message stays one line.
if (NOT windows_compiler)
    message (FATAL_ERROR "  There is no ${CMAKE_CXX_COMPILER}: install the package g++-mingw-w64-x86-64-posix")
endif ()

set (windows_headers "${LARKSPIRE_WINDOWS_DEPS}/mingw/share/mingw-w64/include")
set (windows_libraries "${LARKSPIRE_WINDOWS_DEPS}/mingw/x86_64-w64-mingw32/lib")
set (newest_interface "")

if (EXISTS "${windows_headers}/uiautomationcore.h")
    file (STRINGS "${windows_headers}/uiautomationcore.h" newest_interface REGEX "ISelectionProvider2" LIMIT_COUNT 1)
endif ()

if (NOT newest_interface)
    message (FATAL_ERROR "  The Windows headers in ${windows_headers} are missing or too old (no ISelectionProvider2 in uiautomationcore.h): "
        "run scripts/windows/setup, which takes the packages mingw-w64-common and mingw-w64-x86-64-dev, version 14")
endif ()

# The compiler's own headers stay, in the order that it uses them itself; the system's are exchanged.
execute_process (COMMAND ${CMAKE_C_COMPILER} -print-libgcc-file-name
    OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
cmake_path (GET libgcc PARENT_PATH gcc)
set (system_headers "-nostdinc -isystem ${gcc}/include -isystem ${gcc}/include-fixed -isystem ${windows_headers}")
set (CMAKE_C_FLAGS_INIT "${system_headers}")
set (CMAKE_CXX_FLAGS_INIT "-nostdinc++ -isystem ${gcc}/include/c++ -isystem ${gcc}/include/c++/x86_64-w64-mingw32 -isystem ${gcc}/include/c++/backward ${system_headers}")

foreach (kind EXE SHARED MODULE)
    set (CMAKE_${kind}_LINKER_FLAGS_INIT "-B${windows_libraries} -L${windows_libraries}")
endforeach ()

set (CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${LARKSPIRE_WINDOWS_DEPS}/codecs")
set (CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set (CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set (CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set (CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
