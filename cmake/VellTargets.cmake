# How every target of this project is compiled: language level, warnings, sanitizers, moc.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(VELL_CCACHE ccache)
if(VELL_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${VELL_CCACHE}")
endif()

add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY QT_NO_FOREACH)
add_compile_options(-Wall -Wextra -Wnon-virtual-dtor -Wold-style-cast)
if(VELL_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()
# What people run on files of strangers: checked buffers and calls, and nothing to overwrite at run time.
# Ubuntu's compiler fortifies by itself, hence the -U.
add_compile_options("$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
if(NOT APPLE)
    # A program loads the libraries that it uses, not all that its folders know.
    add_link_options("LINKER:--as-needed")
    add_link_options("$<$<CONFIG:Release>:LINKER:-z,relro;LINKER:-z,now>")
endif()
# While working, the quickest linker that is there; packages are linked with the distribution's own.
include(CheckLinkerFlag)
foreach(linker mold gold)
    check_linker_flag(CXX "-fuse-ld=${linker}" VELL_HAS_LINKER_${linker})
    if(VELL_HAS_LINKER_${linker})
        add_link_options("$<$<NOT:$<CONFIG:Release>>:-fuse-ld=${linker}>")
        break()
    endif()
endforeach()
include(CheckPIESupported)
check_pie_supported()
if(VELL_SANITIZERS)
    add_compile_options(-fsanitize=${VELL_SANITIZERS} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VELL_SANITIZERS})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # The checks woven in hide from GCC that the parts of a variant are set.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()
if(VELL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Without a compiler cache, headers that most files include are compiled once for each kind of target.
# GCC only: clang wants the definitions of all its users to be the same.
set(VELL_PRECOMPILE OFF)
if(NOT VELL_CCACHE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(VELL_PRECOMPILE ON)
endif()

# And files are compiled eight at a time, in half the time. With a cache, which knows each file by
# itself, they aren't, so that one that lacks an include is found.
if(NOT DEFINED CMAKE_UNITY_BUILD AND NOT VELL_CCACHE)
    set(CMAKE_UNITY_BUILD ON)
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 8)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC takes the files of a batch for headers, whose types mustn't hold those of one file only.
        add_compile_options(-Wno-subobject-linkage)
    endif()
endif()

# vell_precompiled(NAME [EXECUTABLES] [LINK …] [HEADERS …]): headers that other libraries then share, or
# other executables, which are compiled with other flags.
function(vell_precompiled name)
    cmake_parse_arguments(arg "EXECUTABLES" "" "LINK;HEADERS" ${ARGN})
    set(source "${CMAKE_BINARY_DIR}/${name}.cpp")
    file(GENERATE OUTPUT "${source}" CONTENT "int main() {}\n")
    if(arg_EXECUTABLES)
        add_executable(${name} EXCLUDE_FROM_ALL "${source}")
    else()
        add_library(${name} OBJECT EXCLUDE_FROM_ALL "${source}")
    endif()
    target_link_libraries(${name} PRIVATE ${arg_LINK})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# vell_use_precompiled(TARGET NAME)
function(vell_use_precompiled target name)
    if(VELL_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM ${name})
    endif()
endfunction()

# vell_library(NAME [SOURCES …] [LINK …]): one static library per folder of src/. What it links is
# what it may include; the generated link lists are the layering. A folder whose classes have signals
# sets CMAKE_AUTOMOC; moc takes a second for each target that it runs for.
function(vell_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_library(vell_${name} STATIC ${arg_SOURCES})
    target_include_directories(vell_${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(vell_${name} PUBLIC ${arg_LINK})
    if("Qt6::Widgets" IN_LIST arg_LINK)
        vell_use_precompiled(vell_${name} vell_widget_headers)
    else()
        vell_use_precompiled(vell_${name} vell_core_headers)
    endif()
endfunction()

# Without a runtime folder Qt makes one below /tmp and leaves it there.
function(vell_test_environment name)
    set(runtime "${CMAKE_BINARY_DIR}/runtime")
    file(MAKE_DIRECTORY "${runtime}")
    file(CHMOD "${runtime}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set_tests_properties(${name} PROPERTIES ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;XDG_RUNTIME_DIR=${runtime}")
endfunction()

# vell_test(NAME [SOURCES …] [LINK …]): a GoogleTest program that ctest runs as one test.
function(vell_test name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LINK} vell_writers GTest::gmock
                                          GTest::gtest_main)
    vell_use_precompiled(${name} vell_test_headers)
    add_test(NAME ${name} COMMAND ${name})
    vell_test_environment(${name})
endfunction()

# vell_fuzz(NAME [SOURCES …] [LINK …] [DICTIONARY FILE] [SEEDS FOLDER]): the program fuzz_NAME around a
# LLVMFuzzerTestOneInput, with its seeds and all earlier findings in fuzz/corpus/NAME, and seeds that the
# build makes in the folder. Under the fuzz preset its test reads these and goes on from them for ten seconds; in every other build it is an
# ordinary program, and its test only replays them.
function(vell_fuzz name)
    cmake_parse_arguments(arg "" "DICTIONARY;SEEDS" "SOURCES;LINK" ${ARGN})
    set(target fuzz_${name})
    set(corpus "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
    add_executable(${target} ${arg_SOURCES})
    target_link_libraries(${target} PRIVATE ${arg_LINK})
    if(NOT VELL_FUZZ)
        target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp")
        add_test(NAME ${target} COMMAND ${target} "${corpus}" ${arg_SEEDS})
        vell_test_environment(${target})
        return()
    endif()
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzzers ${target})
    set(found "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    file(MAKE_DIRECTORY "${found}/corpus")
    if(arg_DICTIONARY)
        set(dictionary "-dict=${CMAKE_CURRENT_SOURCE_DIR}/${arg_DICTIONARY}")
    endif()
    add_test(NAME ${target}
             COMMAND ${target} -max_total_time=10 -timeout=5 -rss_limit_mb=512 -print_final_stats=1
                     ${dictionary} "-artifact_prefix=${found}/" "${found}/corpus" "${corpus}" ${arg_SEEDS})
    vell_test_environment(${target})
endfunction()
