# What cmake --install puts below the prefix: all that there is, a component for each format, for the programs and for the
# documents. Packages and make install are made of these rules too. JUCE's own stay out: its folder is EXCLUDE_FROM_ALL.
if (WIN32)
    set (vst2 "$<TARGET_FILE:Larkspire_VST>")
    set (bundled "Contents/x86_64-win/Quendal Larkspire.vst3")
else ()
    set (vst2 "${LARKSPIRE_DIST}/Quendal Larkspire.so")
    set (bundled "Contents/${CMAKE_SYSTEM_PROCESSOR}-linux/Quendal Larkspire.so")
endif ()

# Debian wants libraries without the mode of a program, and Fedora's tools see only those that have it.
set (libraries PROGRAMS)

if (WIN32 OR CMAKE_INSTALL_SO_NO_EXE)
    set (libraries FILES)
endif ()

cmake_path (GET bundled PARENT_PATH system)
set (bundle "${LARKSPIRE_DIST}/Quendal Larkspire.vst3")
set (installed_bundle "${LARKSPIRE_VST3_DIR}/Quendal Larkspire.vst3")
install (${libraries} "${vst2}" DESTINATION "${LARKSPIRE_VST2_DIR}" COMPONENT vst2)
install (${libraries} "${bundle}/${bundled}" DESTINATION "${installed_bundle}/${system}" COMPONENT vst3)
install (FILES "${bundle}/Contents/Resources/moduleinfo.json"
    DESTINATION "${installed_bundle}/Contents/Resources" COMPONENT vst3)

if (WIN32)
    install (FILES
        "${LARKSPIRE_PAGE}"
        "${LARKSPIRE_DOCUMENTS}/INSTALL.txt"
        "${LARKSPIRE_DOCUMENTS}/LICENSE.txt"
        "${LARKSPIRE_DOCUMENTS}/THIRD-PARTY.txt"
        DESTINATION . COMPONENT documents)
    return ()
endif ()

install (${libraries} "${LARKSPIRE_DIST}/larkspire.lv2/larkspire.so"
    DESTINATION "${LARKSPIRE_LV2_DIR}/larkspire.lv2" COMPONENT lv2)
install (FILES "${LARKSPIRE_DIST}/larkspire.lv2/manifest.ttl" "${LARKSPIRE_DIST}/larkspire.lv2/larkspire.ttl"
    DESTINATION "${LARKSPIRE_LV2_DIR}/larkspire.lv2" COMPONENT lv2)

install (PROGRAMS "${LARKSPIRE_DIST}/larkspire-render" "${LARKSPIRE_DIST}/larkspire-microphone" TYPE BIN
    COMPONENT programs)

if (LARKSPIRE_HELP2MAN)
    install (FILES "${LARKSPIRE_DOCUMENTS}/larkspire-render.1" "${LARKSPIRE_DOCUMENTS}/larkspire-microphone.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT programs)
endif ()

install (FILES "${CMAKE_SOURCE_DIR}/LICENSE" "${LARKSPIRE_DOCUMENTS}/THIRD-PARTY.txt"
    DESTINATION "${LARKSPIRE_LICENCE_DIR}" COMPONENT documents)
install (FILES
    "${CMAKE_SOURCE_DIR}/CHANGELOG.md" "${CMAKE_SOURCE_DIR}/CONTRIBUTING.md" "${CMAKE_SOURCE_DIR}/README.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documents)
install (DIRECTORY "${CMAKE_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documents
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.csv")
install (FILES "${LARKSPIRE_PAGE}" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documents OPTIONAL) # if it is built
install (FILES "${LARKSPIRE_DOCUMENTS}/com.quendal.larkspire.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/metainfo" COMPONENT documents)

# CMake ends with a list of what it has installed, in the folder of the build, and fails where that is somebody else's.
install (CODE [[
    execute_process (COMMAND test -w "${CMAKE_CURRENT_LIST_DIR}" RESULT_VARIABLE unwritable)

    if (unwritable)
        return ()
    endif ()
]] ALL_COMPONENTS)
