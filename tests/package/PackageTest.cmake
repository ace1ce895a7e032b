# Builds examples/embed against a fresh installation, with CMake and with pkg-config, and compares what its programs answer.
# Looks at what the libraries let out.

set(prefix "${WORK_DIR}/prefix")
set(build "${WORK_DIR}/embed")
file(REMOVE_RECURSE "${prefix}" "${build}" "${WORK_DIR}/headers")

# run(OUTPUT command...): stops at a failure.
function(run output)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE text ERROR_VARIABLE errors)
    if(NOT status STREQUAL 0)
        message(FATAL_ERROR "${ARGN}\nended with ${status}\n${text}\n${errors}")
    endif()
    set(${output} "${text}" PARENT_SCOPE)
endfunction()

function(expect program expected)
    run(answer "${build}/${program}" ${ARGN})
    if(NOT answer STREQUAL expected)
        message(FATAL_ERROR "${program} answers\n${answer}\ninstead of\n${expected}")
    endif()
endfunction()

set(flags "-Wall -Wextra -Werror")
if(SANITIZE)
    string(APPEND flags " -fsanitize=${SANITIZE}")
endif()
run(log "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
run(log "${CMAKE_COMMAND}" -S "${SOURCE_DIR}/examples/embed" -B "${build}" -G Ninja "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" "-DCMAKE_CXX_FLAGS=${flags}")
run(log "${CMAKE_COMMAND}" --build "${build}")

# Every installed header compiles alone.
run(log "${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/package/headers" -B "${WORK_DIR}/headers" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}"
    "-DCMAKE_CXX_FLAGS=${flags}")
run(log "${CMAKE_COMMAND}" --build "${WORK_DIR}/headers")

# The same with pkg-config, as any other build would.
file(GLOB pkgconfig_dir "${prefix}/lib*/pkgconfig" "${prefix}/lib/*/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "${pkgconfig_dir}")
run(ours pkg-config --cflags --libs orvane-adaptor orvane-files orvane-maps)
run(plugins pkg-config --variable=plugindir orvane-engine)
run(translations pkg-config --variable=translationdir orvane-engine)
foreach(text ours plugins translations)
    string(STRIP "${${text}}" ${text})
endforeach()
file(GLOB libraries "${prefix}/lib*/liborvane_*.so" "${prefix}/lib/*/liborvane_*.so")
list(GET libraries 0 library)
cmake_path(GET library PARENT_PATH library_dir)
separate_arguments(words UNIX_COMMAND "${flags} ${ours}")
run(log "${COMPILER}" "${SOURCE_DIR}/examples/embed/main.cpp" "-DORVANE_PLUGIN_DIR=\"${plugins}\""
    "-DORVANE_TRANSLATION_DIR=\"${translations}\"" ${words}
    "-Wl,-rpath,${library_dir}" -o "${build}/embed_with_pkg_config")

set(data "${SOURCE_DIR}/examples/data")
foreach(program embed embed_with_pkg_config)
    expect(${program} [[
Shanghai | 22315474
Istanbul | 14804116
Buenos Aires | 13076300
Āzādshahr 514.0k
Kahrīz 767.0k
Qarchak 252.0k
4442
error: no such table: cities
error: no such table: renamed table
]] "${data}/cities.shp" "Select name, population From cities Order By population Desc Limit 3"
        "name & ' ' & Round(population / 1000, 1) & 'k'")
endforeach()
expect(folders [[
cities.cpg | 5
cities.prj | 145
]] "${data}" "Select name, size From files Where name Like 'CITIES.%' And size < 1000 Order By size")

# The window is a host as any other: of what is not its own it includes what is installed.
file(GLOB_RECURSE sources "${SOURCE_DIR}/host/desk/*.h" "${SOURCE_DIR}/host/desk/*.cpp")
foreach(source ${sources})
    file(STRINGS "${source}" includes REGEX "^#include [<\"](orvane|platform|host)/")
    foreach(line ${includes})
        string(REGEX REPLACE "^#include [<\"]([^>\"]*)[>\"].*" "\\1" header "${line}")
        if(NOT header MATCHES "^host/desk/" AND NOT EXISTS "${prefix}/include/${header}"
                AND NOT EXISTS "${prefix}/include/orvane/${header}")
            message(FATAL_ERROR "${source} includes ${header}, which is not installed")
        endif()
    endforeach()
endforeach()

# Only names of the project leave its libraries.
set(own "(orvane::|QDecNumber|decNumberToString|operator..?\\(QDecNumber|QSharedDataPointer<orvane::)")
set(prefixed "(vtable for |typeinfo for |typeinfo name for |VTT for |guard variable for |[a-z-]* ?thunk to )?")
foreach(library ${libraries})
    run(names nm -DC --defined-only "${library}")
    string(REGEX REPLACE "(^|\n)[0-9a-f]* . ${prefixed}${own}[^\n]*" "" strange "${names}")
    string(STRIP "${strange}" strange)
    if(NOT names OR strange)
        message(FATAL_ERROR "${library} lets out\n${strange}")
    endif()
endforeach()

# What they ask for is named with its licence.
if(NOT SANITIZE)
    file(READ "${SOURCE_DIR}/docs/third-party.md" licences)
    file(GLOB_RECURSE plugins "${prefix}/lib/*/plugins/*.so")
    file(GLOB programs "${prefix}/bin/*")
    foreach(binary ${libraries} ${plugins} ${programs})
        run(entries readelf --dynamic "${binary}")
        string(REGEX MATCHALL "(lib|ld-)[A-Za-z0-9_+-]+[.]so[.0-9]*" names "${entries}")
        foreach(name ${names})
            string(FIND "${licences}" "`${name}`" place)
            if(place EQUAL -1 AND NOT name MATCHES "^liborvane_")
                message(FATAL_ERROR "${binary} is linked to ${name}, which docs/third-party.md does not name")
            endif()
        endforeach()
    endforeach()
endif()

# The installed command finds its own libraries and plug-ins.
run(answer "${prefix}/bin/orvane" "${data}/cities.shp" -F csv --no-header -c "Select Count(*) From cities")
if(NOT answer STREQUAL "4442\n")
    message(FATAL_ERROR "the installed command answers ${answer}")
endif()
run(log "${prefix}/bin/orvane" "${data}/cities.shp" -c "Select * From cities" -o "${WORK_DIR}/prefix/map.png")
