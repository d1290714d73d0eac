# How every target of this project is compiled: language level, warnings, sanitizers, moc.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
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
if(VELL_SANITIZERS)
    add_compile_options(-fsanitize=${VELL_SANITIZERS} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VELL_SANITIZERS})
endif()

# vell_library(NAME [SOURCES …] [LINK …]): one static library per folder of src/. What it links is
# what it may include; the generated link lists are the layering.
function(vell_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_library(vell_${name} STATIC ${arg_SOURCES})
    target_include_directories(vell_${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(vell_${name} PUBLIC ${arg_LINK})
endfunction()

# vell_test(NAME [SOURCES …] [LINK …]): a GoogleTest program that ctest runs as one test.
function(vell_test name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LINK} vell_test_support GTest::gmock
                                          GTest::gtest_main)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()
