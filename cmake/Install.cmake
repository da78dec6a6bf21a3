# cmake --install: headers, library, host when it is built, and a package for find_package(QovXml CONFIG REQUIRED).
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QovXml)

install(TARGETS QovXml EXPORT QovXmlTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(NOT WIN32)
  install(TARGETS winapi EXPORT QovXmlTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
if(QOVXML_BUILD_HOST)
  install(TARGETS qovxml-configure RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(FILES include/QovXml.h include/ILogger.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT QovXmlTargets NAMESPACE QovXml:: DESTINATION ${package_folder})
if(QOVXML_BUILD_HOST)
  include(${CMAKE_CURRENT_LIST_DIR}/Simulation.cmake)
endif()
configure_package_config_file(cmake/QovXmlConfig.cmake.in ${PROJECT_BINARY_DIR}/QovXmlConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QovXmlConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QovXmlConfig.cmake ${PROJECT_BINARY_DIR}/QovXmlConfigVersion.cmake
  cmake/windows/EmbedManifest.cmake cmake/windows/Application.manifest cmake/windows/Application.rc
  DESTINATION ${package_folder})
