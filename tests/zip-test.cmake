# The zip that cpack makes: its name, what it holds, and that its program runs where it was unpacked.
set(scratch ${BUILD}/zip-test)
set(name QovXml-${VERSION}-windows-x64)
file(REMOVE_RECURSE ${scratch})

include(${CMAKE_CURRENT_LIST_DIR}/support/Run.cmake)

run(ignored ${CMAKE_CPACK_COMMAND} --config ${BUILD}/CPackConfig.cmake -B ${scratch})
file(ARCHIVE_EXTRACT INPUT ${scratch}/${name}.zip DESTINATION ${scratch})

file(GLOB_RECURSE files RELATIVE ${scratch}/${name} ${scratch}/${name}/*)
list(FILTER files EXCLUDE REGEX "^(lib/cmake/QovXml|include/QovXmlSimulation|share/QovXml/examples)/")
list(SORT files)
set(expected
  bin/QovXml.dll bin/qovxml-configure.exe
  include/ILogger.h include/QovXml.h
  lib/libQovXml.dll.a lib/libQovXmlSimulation.a
  share/QovXml/machine.schema.json
  share/doc/QovXml/CHANGELOG.md share/doc/QovXml/MESSAGES.md share/doc/QovXml/MISBEHAVING.md
  share/doc/QovXml/XML-FILES.md share/doc/QovXml/report.png)
if(NOT files STREQUAL expected)
  message(SEND_ERROR "the zip holds\n${files}\ninstead of\n${expected}")
endif()
if(NOT EXISTS ${scratch}/${name}/lib/cmake/QovXml/QovXmlConfig.cmake)
  message(SEND_ERROR "the zip holds no CMake package")
endif()

run(output ${LAUNCHER} ${scratch}/${name}/bin/qovxml-configure.exe --version)
if(NOT output MATCHES "${VERSION}")
  message(SEND_ERROR "the program of the zip says \"${output}\"")
endif()
