# What every target of the project shares: language level, warnings, sanitizers, hidden symbols.
# Nothing here is global: a target that wants it calls orvane_target_defaults.

function(orvane_target_defaults target)
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 20
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        AUTOMOC ON
        POSITION_INDEPENDENT_CODE ON
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin"
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib"
        INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
        -Woverloaded-virtual -Wconversion -Wno-sign-conversion)
    if(ORVANE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(ORVANE_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${ORVANE_SANITIZE} -fno-sanitize-recover=all
            -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${ORVANE_SANITIZE})
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # GCC takes the checks that a sanitizer adds for uses of what is not initialised.
            target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
        endif()
    endif()
    if(ORVANE_BUILD_FUZZERS)
        # Branches of the libraries guide the search too. Exported types keep their own type information in
        # each library, which the checks of virtual calls take for a fault.
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link -fno-sanitize=vptr,function)
    endif()
endfunction()

# orvane_library(NAME EXPORT_HEADER path/below/generated MACRO prefix)
function(orvane_library target)
    cmake_parse_arguments(ARG "" "EXPORT_HEADER;MACRO" "" ${ARGN})
    add_library(${target} SHARED)
    add_library(Orvane::${target} ALIAS ${target})
    orvane_target_defaults(${target})
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${ORVANE_ABI}
        LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/orvane.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/orvane.map")
    if(ORVANE_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
        target_link_options(${target} PRIVATE --coverage)
    endif()
    generate_export_header(${target} BASE_NAME ${ARG_MACRO}
        EXPORT_FILE_NAME "${PROJECT_BINARY_DIR}/generated/${ARG_EXPORT_HEADER}")
endfunction()

# orvane_test(NAME sources... LIBRARIES targets...): one GoogleTest program, one ctest entry.
function(orvane_test name)
    cmake_parse_arguments(ARG "" "" "LIBRARIES;LABELS" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    orvane_target_defaults(${name})
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_compile_definitions(${name} PRIVATE ORVANE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
        ORVANE_EXAMPLE_DATA="${PROJECT_SOURCE_DIR}/examples/data")
    add_test(NAME ${name} COMMAND ${name})
    set(seconds 300)
    if(ORVANE_COVERAGE)
        set(seconds 1500) # counting takes its time
    endif()
    set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT ${seconds}
        ENVIRONMENT "QT_PLUGIN_PATH=${PROJECT_BINARY_DIR}/plugins;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp")
endfunction()

# orvane_embed_translations(program): makes the English texts part of a program, ":/translations/orvane_en.qm".
function(orvane_embed_translations target)
    set_source_files_properties("${PROJECT_SOURCE_DIR}/translations/orvane_en.ts" PROPERTIES
        OUTPUT_LOCATION "${CMAKE_CURRENT_BINARY_DIR}/translations")
    qt5_add_translation(translation_files "${PROJECT_SOURCE_DIR}/translations/orvane_en.ts")
    file(CONFIGURE OUTPUT translations.qrc CONTENT
        "<RCC><qresource prefix=\"/translations\"><file alias=\"orvane_en.qm\">translations/orvane_en.qm</file></qresource></RCC>\n")
    qt5_add_resources(translation_resources "${CMAKE_CURRENT_BINARY_DIR}/translations.qrc")
    target_sources(${target} PRIVATE ${translation_resources})
endfunction()
