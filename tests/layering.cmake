# SPDX-License-Identifier: MIT
#
# Reads the #include lines of src/ and complains about each that reaches up or sideways. A missing
# link makes most wrong library headers fail to compile; headers of our own don't fail, as all
# folders share one include path, and neither do libraries that lie in the system's.
#
# usage: cmake -DSOURCE=… -DQT_HEADERS=… -P layering.cmake

cmake_minimum_required(VERSION 3.25)

# What each folder may include besides itself, and the Qt modules it may see.
set(foundation)
set(toolkit foundation)
set(picture foundation toolkit)
set(transcript foundation)
set(identity foundation toolkit transcript)
set(export ${identity} identity)
set(timeline ${identity} identity)
set(cli ${export} export)
set(app ${export} export timeline)

set(foundation_qt Core)
set(transcript_qt Core)
set(toolkit_qt Core Gui)
set(picture_qt Core Gui)
set(identity_qt Core Gui)
set(export_qt Core Gui)
set(cli_qt Core Gui)
set(timeline_qt Core Gui Widgets)
set(app_qt Core Gui Widgets DBus Network PrintSupport Xml)

# The other libraries, and the one folder that hides each.
set(libraries "^unicode/" "^(libebook|libedataserver|glib|gio|glib-object)[/.]")
set(hidden_in toolkit identity)

set(complaints "")
macro(complain why)
    string(APPEND complaints "src/${file}: ${include}: ${why}\n")
endmacro()

macro(check_own folder target)
    if(NOT "${target}" STREQUAL "${folder}" AND NOT "${target}" IN_LIST ${folder})
        complain("${folder} stands below or beside ${target}")
    endif()
endmacro()

macro(check_qt folder header)
    set(module "")
    foreach(candidate IN ITEMS Core Gui Widgets DBus Network PrintSupport Xml)
        if(EXISTS "${QT_HEADERS}/Qt${candidate}/${header}")
            set(module ${candidate})
            break()
        endif()
    endforeach()
    if("${header}" MATCHES "^Qt(Core|Gui|Widgets|DBus|Network|PrintSupport|Xml|Test)(/|$)")
        complain("include the single header, without its module")
    elseif(NOT module IN_LIST ${folder}_qt)
        complain("${folder} uses Qt ${${folder}_qt} only")
    endif()
endmacro()

macro(check_library folder header)
    foreach(pattern owner IN ZIP_LISTS libraries hidden_in)
        if("${header}" MATCHES "${pattern}" AND NOT "${folder}" STREQUAL "${owner}")
            complain("only ${owner} knows that library")
        endif()
    endforeach()
endmacro()

file(GLOB_RECURSE files RELATIVE "${SOURCE}/src" "${SOURCE}/src/*.h" "${SOURCE}/src/*.cpp")
foreach(file IN LISTS files)
    string(REGEX REPLACE "/.*" "" folder "${file}")
    if(NOT DEFINED ${folder}_qt)
        message(FATAL_ERROR "src/${folder} has no place in the order of the folders yet")
    endif()
    file(STRINGS "${SOURCE}/src/${file}" includes REGEX "^ *# *include")
    foreach(include IN LISTS includes)
        if(include MATCHES "\"([a-z_]+)/[^\"]+\"")
            check_own(${folder} ${CMAKE_MATCH_1})
        elseif(include MATCHES "\"[^\"]*\\.moc\"|\"moc_[^\"]*\"")
            continue()
        elseif(include MATCHES "\"")
            complain("name the folder")
        elseif(include MATCHES "<(Q[^>]+)>")
            check_qt(${folder} "${CMAKE_MATCH_1}")
        elseif(include MATCHES "<([^>]+)>")
            check_library(${folder} "${CMAKE_MATCH_1}")
        endif()
    endforeach()
endforeach()

if(NOT files)
    message(FATAL_ERROR "no sources under ${SOURCE}/src")
endif()
if(complaints)
    message(FATAL_ERROR "Includes against the order of the folders:\n${complaints}")
endif()
