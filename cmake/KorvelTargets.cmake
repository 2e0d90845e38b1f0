# Helpers that give every target the same strict warnings, set per target so
# that third-party headers and other projects are never affected. Tests also get
# KORVEL_SANITIZER_ENVIRONMENT (and those on the X screen KORVEL_SANITIZER_GL_ENVIRONMENT),
# which the sanitizer build sets.

function(korvel_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
        -Wcast-align -Woverloaded-virtual -Wimplicit-fallthrough
        -Werror)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC 12 reports false overlaps inside std::string at higher optimisation.
        target_compile_options(${target} PRIVATE -Wno-restrict)
        # The sanitizers' instrumentation blinds GCC's flow analysis, and it then
        # reports variables inside std::variant and std::function as maybe used
        # uninitialized (GCC's manual warns of exactly this). The sanitizer build
        # still shows the warning; the ordinary build still stops on it.
        if(KORVEL_SANITIZE)
            target_compile_options(${target} PRIVATE -Wno-error=maybe-uninitialized)
        endif()
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
    # The sanitizer options go through `cmake -E env`: the discovered tests take a
    # property list apart at its separators, so ENVIRONMENT can carry one variable.
    if(KORVEL_SANITIZER_ENVIRONMENT)
        set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR
            "${CMAKE_COMMAND};-E;env;${KORVEL_SANITIZER_ENVIRONMENT}")
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES ENVIRONMENT LC_ALL=C.UTF-8)
endfunction()

# korvel_benchmark(name SOURCES ... LINKS ...): one Google Benchmark program.
function(korvel_benchmark name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} benchmark::benchmark benchmark::benchmark_main)
    korvel_warnings(${name})
endfunction()

# korvel_gui_test(name SOURCES ... LINKS ... [OFFSCREEN]): a GoogleTest executable
# of window code. With OFFSCREEN it runs on Qt's offscreen platform (widgets only);
# otherwise the whole executable runs as one test on a virtual X screen with Mesa,
# because the 3D view needs a real GLX context.
function(korvel_gui_test name)
    cmake_parse_arguments(ARG "OFFSCREEN" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/GuiTestMain.cpp)
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} Qt6::Widgets GTest::gtest)
    korvel_warnings(${name})
    set(isolation LC_ALL=C.UTF-8 KORVEL_MCP=0 KORVEL_AUTOSAVE_MS=100000000 ${KORVEL_SANITIZER_ENVIRONMENT})
    if(ARG_OFFSCREEN)
        # ctest lists the cases by running the program before any test environment
        # applies; without a display a QApplication aborts there, so listing and
        # running both go through the offscreen platform (and the sanitizer options).
        set(emulator ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${KORVEL_SANITIZER_ENVIRONMENT})
        set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${emulator}")
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
            PROPERTIES ENVIRONMENT "${isolation};QT_QPA_PLATFORM=offscreen")
    else()
        # Set on the program alone: the X server and the script's helpers need none of it.
        set(program $<TARGET_FILE:${name}>)
        if(KORVEL_SANITIZER_GL_ENVIRONMENT)
            set(program ${CMAKE_COMMAND} -E env ${KORVEL_SANITIZER_GL_ENVIRONMENT} ${program})
        endif()
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/support/with-x ${program})
        set_tests_properties(${name} PROPERTIES ENVIRONMENT "${isolation}" TIMEOUT 600)
    endif()
endfunction()
