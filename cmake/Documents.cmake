# What comes with libraries and programs and is written by the build: the man pages, which are the programs' --help; the
# notices of what others wrote; the entry for software catalogues; instructions for the archives.
set (LARKSPIRE_DOCUMENTS "${CMAKE_BINARY_DIR}/packaging" CACHE INTERNAL "The folder of these documents")
find_program (LARKSPIRE_HELP2MAN help2man)

set (documents INSTALL.txt THIRD-PARTY.txt)
set (written_from
    packaging/Licences.cmake
    packaging/WriteDocuments.cmake
    packaging/licences/GPL-3.txt
    packaging/licences/cli11.txt
    packaging/licences/gcc-runtime-exception.txt
    packaging/licences/musl.txt
    packaging/licences/nlohmann-json.txt)
set (values
    "-DDOCUMENTS=${LARKSPIRE_DOCUMENTS}"
    "-DLARKSPIRE_RELEASE=${LARKSPIRE_RELEASE}"
    "-DLARKSPIRE_RELEASE_TIME=${LARKSPIRE_RELEASE_TIME}"
    "-DLARKSPIRE_MAINTAINER=${LARKSPIRE_MAINTAINER}"
    "-DLARKSPIRE_COPYRIGHT_HOLDER=${LARKSPIRE_COPYRIGHT_HOLDER}"
    "-DLARKSPIRE_JUCE=${LARKSPIRE_JUCE}")
set (programs "")

if (WIN32)
    list (APPEND documents LICENSE.txt)
    list (APPEND written_from packaging/windows/INSTALL.txt.in)
    list (APPEND values "-DLARKSPIRE_WINDOWS_DEPS=${LARKSPIRE_WINDOWS_DEPS}")
else ()
    list (APPEND documents com.quendal.larkspire.metainfo.xml)
    list (APPEND written_from packaging/linux/INSTALL.txt.in packaging/linux/com.quendal.larkspire.metainfo.xml.in)
    list (APPEND values "-DPAGE=$<TARGET_EXISTS:larkspire-page>")

    if (LARKSPIRE_HELP2MAN)
        list (APPEND documents larkspire-render.1 larkspire-microphone.1)
        list (APPEND written_from
            packaging/linux/help-for-man packaging/linux/larkspire-render.h2m packaging/linux/larkspire-microphone.h2m)
        set (programs larkspire-render "${LARKSPIRE_DIST}/larkspire-microphone")
        list (APPEND values "-DHELP2MAN=${LARKSPIRE_HELP2MAN}"
            "-DPROGRAMS=$<TARGET_FILE:larkspire-render>,${LARKSPIRE_DIST}/larkspire-microphone")
    else ()
        message (STATUS "help2man is missing: there are no man pages")
    endif ()
endif ()

list (TRANSFORM documents PREPEND "${LARKSPIRE_DOCUMENTS}/")
list (TRANSFORM written_from PREPEND "${CMAKE_SOURCE_DIR}/")
add_custom_command (
    OUTPUT ${documents}
    COMMAND ${CMAKE_COMMAND} ${values} -P "${CMAKE_SOURCE_DIR}/packaging/WriteDocuments.cmake"
    DEPENDS ${written_from} ${programs}
    COMMENT "Writing the documents"
    VERBATIM)
add_custom_target (larkspire-documents ALL DEPENDS ${documents})

# Only the Debian package holds these, and scripts/packaging/package makes it.
if (NOT WIN32)
    add_custom_target (larkspire-debian-documents
        COMMAND ${CMAKE_COMMAND} ${values} -P "${CMAKE_SOURCE_DIR}/packaging/debian/WriteDocuments.cmake"
        COMMENT "Writing the documents of the Debian package"
        VERBATIM)
endif ()
