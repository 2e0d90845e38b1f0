# Helpers that give every target the same strict warnings, set per target so
# that third-party headers and other projects are never affected.

function(korvel_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
        -Wcast-align -Woverloaded-virtual -Wimplicit-fallthrough
        -Werror)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC 12 reports false overlaps inside std::string at higher optimisation.
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
endfunction()

# korvel_library(name SOURCES ... LINKS ...): the static library of one folder.
function(korvel_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_LINKS})
    korvel_warnings(${name})
endfunction()

# korvel_test(name SOURCES ... LINKS ...): one GoogleTest executable, registered with ctest.
function(korvel_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest GTest::gtest_main)
    korvel_warnings(${name})
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES ENVIRONMENT "LC_ALL=C.UTF-8")
endfunction()

# korvel_benchmark(name SOURCES ... LINKS ...): one Google Benchmark program.
function(korvel_benchmark name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} benchmark::benchmark benchmark::benchmark_main)
    korvel_warnings(${name})
endfunction()
