# What a host application needs: the libraries, the shell, the driver plug-in, the English texts, the headers, and the package
# for find_package(Orvane COMPONENTS Adaptor Files). Engine and Platform always come along.
#
# Headers lie below include/orvane as they do in the sources, so that they find each other; a host includes
# <orvane/...>, <platform/...> and <host/...>. Of the adaptor and the providers those that are for hosts are installed.

set(ORVANE_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/orvane/plugins")
set(ORVANE_TRANSLATION_DIR "${CMAKE_INSTALL_DATADIR}/orvane/translations")
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Orvane")
set(header_dir "${CMAKE_INSTALL_INCLUDEDIR}/orvane")

foreach(component Platform Engine Adaptor Files Maps)
    string(TOLOWER "orvane_${component}" target)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${component})
    list(APPEND targets ${target})
endforeach()
install(TARGETS ${targets} EXPORT OrvaneTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
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
install(DIRECTORY "${PROJECT_SOURCE_DIR}/host/maps" DESTINATION "${header_dir}/host"
    FILES_MATCHING PATTERN "*.h" PATTERN "FeatureStore.h" EXCLUDE)

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/OrvaneConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/OrvaneConfig.cmake" INSTALL_DESTINATION "${package_dir}"
    PATH_VARS ORVANE_PLUGIN_DIR ORVANE_TRANSLATION_DIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/OrvaneConfig.cmake" "${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake"
    DESTINATION "${package_dir}")
