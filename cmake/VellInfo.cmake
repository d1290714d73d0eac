# What the program says of itself stands in packaging/Info.plist.in and nowhere else; here CMake
# fills in the version, and takes from it what manual pages and packages repeat.

# Where the program and its packages lead people; a distribution may have addresses of its own.
set(VELL_SUPPORT_PAGE "https://example.org/vell/support" CACHE STRING "Where Help leads")
set(VELL_SUPPORT_MAIL "support@example.org" CACHE STRING "The address for load logs, and of the packages")
set(VELL_PUBLISHER_PAGE "https://example.org/vell" CACHE STRING "The project's page")
set(VELL_BUG_REPORTER "https://example.org/vell/issues" CACHE STRING "Where Report Bug leads")
set(VELL_IDENTICON_PROJECT "https://example.org/identicon" CACHE STRING "The page of the identicon generator")

math(EXPR VELL_BUILD "10000 * ${PROJECT_VERSION_MAJOR} + 100 * ${PROJECT_VERSION_MINOR}
                      + ${PROJECT_VERSION_PATCH}")
configure_file("${PROJECT_SOURCE_DIR}/packaging/Info.plist.in" "${CMAKE_BINARY_DIR}/Info.plist"
               @ONLY)

# vell_info(KEY VARIABLE): the string under that key.
function(vell_info key variable)
    file(READ "${CMAKE_BINARY_DIR}/Info.plist" plist)
    if(NOT plist MATCHES "<key>${key}</key>[ \t\r\n]*<string>([^<]*)</string>")
        message(FATAL_ERROR "Info.plist has no string under ${key}")
    endif()
    set(${variable} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()
