# Where cmake --install puts what, below the prefix unless it begins with a slash.
if (WIN32)
    # There are no folders to install to: the layout is that of the archive.
    set (LARKSPIRE_VST2_DIR .)
    set (LARKSPIRE_VST3_DIR .)
    return ()
endif ()

include (GNUInstallDirs)

# Hosts look into lib and lib64, but not into Debian's folder of one architecture.
string (REGEX REPLACE "(^|/)lib/${CMAKE_LIBRARY_ARCHITECTURE}$" "\\1lib" folder "${CMAKE_INSTALL_LIBDIR}")
set (LARKSPIRE_VST2_DIR "${folder}/vst" CACHE STRING "Where the VST 2 library is installed")
set (LARKSPIRE_VST3_DIR "${folder}/vst3" CACHE STRING "Where the VST 3 bundle is installed")
set (LARKSPIRE_LV2_DIR "${folder}/lv2" CACHE STRING "Where the LV2 bundle is installed")

if (NOT "$CACHE{CMAKE_INSTALL_DOCDIR}")
    set (CMAKE_INSTALL_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/quendal-larkspire")
endif ()

set (LARKSPIRE_LICENCE_DIR "${CMAKE_INSTALL_DOCDIR}" CACHE STRING "Where the licence and the notices of others are installed")

# The renderer looks for the VST 2 library there. By its way from the program, so that both may be moved.
set (LARKSPIRE_VST2_FROM_PROGRAM "${LARKSPIRE_VST2_DIR}")

if (NOT IS_ABSOLUTE "${LARKSPIRE_VST2_DIR}" AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
    file (RELATIVE_PATH LARKSPIRE_VST2_FROM_PROGRAM "/${CMAKE_INSTALL_BINDIR}" "/${LARKSPIRE_VST2_DIR}")
endif ()
