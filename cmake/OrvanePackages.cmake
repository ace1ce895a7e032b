# Debian packages through CPack, one for each component of the installation (scripts/packages.sh builds them). What the programs
# link to is found by dpkg-shlibdeps; a dependency stands here only where no file links to it.

set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_CONTACT "Orvane Engine developers")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime development shell)
if(TARGET orvane-desk)
    list(APPEND CPACK_COMPONENTS_ALL desk)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# Libraries of different ABIs are installed side by side.
set(runtime_package "liborvane${ORVANE_ABI}")
set(same_version "${runtime_package} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "${runtime_package}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# The driver of the engine's database stands on Qt's for SQLite, which it loads; maps are labelled.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libqt5sql5-sqlite (>= 5.15)")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-dejavu-core")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION} (libraries)
The engine, the adaptor with its functions, the tables of files and of PostgreSQL, the maps, the Qt SQL driver that they use, and the
English texts of the messages.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvane-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${same_version}, qtbase5-dev (>= 5.15), libsqlite3-dev (>= 3.40), libspatialite-dev (>= 5.0), pkg-config")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (headers)
What a host application of the engine is built with: headers, files for CMake and pkg-config, documents and examples.")

set(CPACK_DEBIAN_SHELL_PACKAGE_NAME orvane)
set(CPACK_DEBIAN_SHELL_PACKAGE_DEPENDS "${same_version}")
set(CPACK_COMPONENT_SHELL_DESCRIPTION "SQL over files of geographic data
The command orvane queries shapefiles, GeoPackages, CSV files and what else GDAL reads together, in one readable dialect.")

set(CPACK_DEBIAN_DESK_PACKAGE_NAME orvane-desk)
set(CPACK_DEBIAN_DESK_PACKAGE_DEPENDS "${same_version}")
set(CPACK_COMPONENT_DESK_DESCRIPTION "SQL over files of geographic data, in a window
The window orvane-desk queries shapefiles, GeoPackages, CSV files and what else GDAL reads together, and shows results as tables
and on a map.")

# What is compiled in has to be named beside the binaries; the texts are those of the packages it was built from.
set(copyright "Orvane Engine. The sources state no licence.\n")
foreach(package libintelrdfpmath-dev libcli11-dev)
    if(EXISTS "/usr/share/doc/${package}/copyright")
        file(READ "/usr/share/doc/${package}/copyright" text)
        string(APPEND copyright "\nParts of ${package} are compiled in:\n\n${text}")
    endif()
endforeach()
file(CONFIGURE OUTPUT copyright CONTENT "${copyright}" @ONLY)
foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} name)
    install(FILES "${PROJECT_BINARY_DIR}/copyright"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}" COMPONENT ${component})
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" "${PROJECT_SOURCE_DIR}/examples"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/liborvane-dev")
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/orvane" COMPONENT shell)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/orvane" COMPONENT shell
    FILES_MATCHING PATTERN "*.md" PATTERN "decisions" EXCLUDE PATTERN "architecture.md" EXCLUDE PATTERN "embedding.md" EXCLUDE)

get_cmake_property(components COMPONENTS)
list(REMOVE_ITEM components ${CPACK_COMPONENTS_ALL})
if(components)
    message(FATAL_ERROR "No package takes what is installed as ${components}: name a COMPONENT")
endif()
include(CPack)
