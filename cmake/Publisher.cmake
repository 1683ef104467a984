# Who publishes this. Packages and documents have both from here and from nowhere else.
set (LARKSPIRE_MAINTAINER "Quendal <maintainers@quendal.invalid>" CACHE STRING
    "Who answers for the packages, as name and address; the given one has no mail box")
set (LARKSPIRE_COPYRIGHT_HOLDER "Quendal" CACHE STRING "Who has the copyright")

# The release's time, in seconds since 1970, which documents and packages are dated with: SOURCE_DATE_EPOCH, or the last
# commit's, or where git cannot tell, that of the changelog, to which make dist has given the last commit's.
if (DEFINED ENV{SOURCE_DATE_EPOCH})
    set (release_time "$ENV{SOURCE_DATE_EPOCH}")
elseif (EXISTS "${CMAKE_SOURCE_DIR}/.git")
    execute_process (COMMAND git -C "${CMAKE_SOURCE_DIR}" log -1 --format=%ct
        OUTPUT_VARIABLE release_time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif ()

if (NOT DEFINED ENV{SOURCE_DATE_EPOCH} AND NOT release_time)
    file (TIMESTAMP "${CMAKE_SOURCE_DIR}/CHANGELOG.md" release_time "%s" UTC)
endif ()

if (NOT release_time MATCHES "^[0-9]+$")
    message (FATAL_ERROR "SOURCE_DATE_EPOCH is '${release_time}', which is no time in seconds since 1970")
endif ()

set (LARKSPIRE_RELEASE_TIME "${release_time}" CACHE INTERNAL "Seconds since 1970")
