# What a host application needs: the libraries, the shell, the driver plug-in, the English texts, the headers, and the package
# for find_package(Orvane COMPONENTS Adaptor Files Postgres). Engine and Platform always come along.
#
# Headers lie below include/orvane as they do in the sources, so that they find each other; a host includes
# <orvane/...>, <platform/...> and <host/...>. Of the adaptor and the providers those that are for hosts are installed.
#
# Components: "runtime" is what a built host needs, "development" what building one needs, "shell" the command.

set(ORVANE_COMPONENTS Platform Engine Adaptor Files Maps)
if(ORVANE_WITH_POSTGRES)
    list(APPEND ORVANE_COMPONENTS Postgres)
endif()
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Orvane")
set(header_dir "${CMAKE_INSTALL_INCLUDEDIR}/orvane")
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

# orvane_pkg_config(COMPONENT): orvane-component.pc, with what the target's own interface asks for.
function(orvane_pkg_config component)
    string(TOLOWER ${component} name)
    set(requires "")
    get_target_property(libraries orvane_${name} INTERFACE_LINK_LIBRARIES)
    foreach(library ${libraries})
        if(library MATCHES "^orvane_(.*)")
            list(APPEND requires "orvane-${CMAKE_MATCH_1} = ${PROJECT_VERSION}")
        elseif(library MATCHES "^Qt5::(.*)")
            list(APPEND requires "Qt5${CMAKE_MATCH_1} >= 5.15")
        elseif(library STREQUAL "PkgConfig::SQLITE3")
            list(APPEND requires "sqlite3 >= 3.40")
        elseif(library STREQUAL "PkgConfig::SPATIALITE")
            list(APPEND requires "spatialite >= 5.0")
        elseif(NOT library MATCHES "LINK_ONLY")
            message(FATAL_ERROR "orvane-${name}.pc: what does ${library} ask for?")
        endif()
    endforeach()
    list(JOIN requires ", " requires)
    file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/orvane.pc.in" "${PROJECT_BINARY_DIR}/orvane-${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/orvane-${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endfunction()

foreach(component ${ORVANE_COMPONENTS})
    string(TOLOWER "orvane_${component}" target)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${component} INSTALL_RPATH "$ORIGIN")
    list(APPEND targets ${target})
    orvane_pkg_config(${component})
endforeach()
install(TARGETS ${targets} EXPORT OrvaneTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
    NAMELINK_COMPONENT development)
install(EXPORT OrvaneTargets NAMESPACE Orvane:: DESTINATION "${package_dir}")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/orvane" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY "${PROJECT_BINARY_DIR}/generated/orvane" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/platform" DESTINATION "${header_dir}"
    FILES_MATCHING PATTERN "*.h" PATTERN "sqldriver" EXCLUDE PATTERN "GeosForm.h" EXCLUDE PATTERN "ProjContext.h" EXCLUDE
    PATTERN "CoordSystemImpl.h" EXCLUDE PATTERN "Geodesic*.h" EXCLUDE
    PATTERN "RelationForm.h" EXCLUDE PATTERN "GeosOperation.h" EXCLUDE PATTERN "Globe*.h" EXCLUDE
    PATTERN "LocalPlane.h" EXCLUDE PATTERN "PieceTree.h" EXCLUDE PATTERN "FarthestSearch.h" EXCLUDE)
install(DIRECTORY "${PROJECT_BINARY_DIR}/generated/platform" "${PROJECT_BINARY_DIR}/generated/host"
    DESTINATION "${header_dir}" FILES_MATCHING PATTERN "*.h")
foreach(header Adaptor FeatureExpression)
    install(FILES "${PROJECT_SOURCE_DIR}/host/adaptor/${header}.h" DESTINATION "${header_dir}/host/adaptor")
endforeach()
foreach(header FunctionRecord FunctionReference FunctionRegistry)
    install(FILES "${PROJECT_SOURCE_DIR}/host/adaptor/functions/${header}.h"
        DESTINATION "${header_dir}/host/adaptor/functions")
endforeach()
foreach(header FilesExtension FileSource LayerTable)
    install(FILES "${PROJECT_SOURCE_DIR}/host/providers/${header}.h" DESTINATION "${header_dir}/host/providers")
endforeach()
foreach(header ResultFile ResultRows)
    install(FILES "${PROJECT_SOURCE_DIR}/host/providers/results/${header}.h"
        DESTINATION "${header_dir}/host/providers/results")
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/host/maps" DESTINATION "${header_dir}/host"
    FILES_MATCHING PATTERN "*.h" PATTERN "FeatureStore.h" EXCLUDE)
if(ORVANE_WITH_POSTGRES)
    foreach(header PostgresExtension PostgresSource PostgresTable)
        install(FILES "${PROJECT_SOURCE_DIR}/host/postgres/${header}.h" DESTINATION "${header_dir}/host/postgres")
    endforeach()
endif()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/OrvaneConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/OrvaneConfig.cmake" INSTALL_DESTINATION "${package_dir}"
    PATH_VARS ORVANE_PLUGIN_DIR ORVANE_TRANSLATION_DIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake"
    COMPATIBILITY ${ORVANE_COMPATIBILITY})
install(FILES "${PROJECT_BINARY_DIR}/OrvaneConfig.cmake" "${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake"
    DESTINATION "${package_dir}")
