# Documents that go with the package, and for Windows the package as a zip: cpack in the build folder.
install(FILES docs/MESSAGES.md docs/MISBEHAVING.md docs/XML-FILES.md docs/report.png CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(NOT WIN32 AND TARGET qovxml-configure)
  install(FILES docs/qovxml-configure.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

if(WIN32 AND PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME QovXml-${PROJECT_VERSION}-windows-x64)
  set(CPACK_STRIP_FILES ON)
  include(CPack)
endif()
