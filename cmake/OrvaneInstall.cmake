# What a host application needs: the libraries, the shell, the driver plug-in, the headers, and the package for find_package.

set(ORVANE_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/orvane/plugins")
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Orvane")

install(TARGETS orvane_platform orvane_engine orvane_adaptor orvane_files EXPORT OrvaneTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/orvane" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
foreach(layer platform host/adaptor host/providers)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${layer}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/orvane/${layer}"
        FILES_MATCHING PATTERN "*.h")
endforeach()
install(DIRECTORY "${PROJECT_BINARY_DIR}/generated/platform" "${PROJECT_BINARY_DIR}/generated/host"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/orvane" FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_BINARY_DIR}/generated/orvane" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILES_MATCHING PATTERN "*.h")
install(EXPORT OrvaneTargets NAMESPACE Orvane:: DESTINATION "${package_dir}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/OrvaneConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/OrvaneConfig.cmake" INSTALL_DESTINATION "${package_dir}" PATH_VARS ORVANE_PLUGIN_DIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/OrvaneConfig.cmake" "${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake"
    DESTINATION "${package_dir}")
