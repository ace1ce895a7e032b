# Builds examples/embed against a fresh installation, and compares what its programs answer.

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

set(data "${SOURCE_DIR}/examples/data")
expect(embed [[
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
expect(folders [[
cities.cpg | 5
cities.prj | 145
]] "${data}" "Select name, size From files Where name Like 'CITIES.%' And size < 1000 Order By size")

# The installed command finds its own libraries and plug-in.
run(answer "${prefix}/bin/orvane" "${data}/cities.shp" -F csv --no-header -c "Select Count(*) From cities")
if(NOT answer STREQUAL "4442\n")
    message(FATAL_ERROR "the installed command answers ${answer}")
endif()
