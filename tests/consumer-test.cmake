# Installs the build into a scratch folder, configures and builds the consumer against the installed package, and runs it there
# on the example files: it must print OUTCOME (a regular expression), whatever its exit code.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${output}")
  endif()
endfunction()

set(source ${PROJECT}/tests/consumer)
set(scratch ${BUILD}/consumer)
set(installed ${scratch}/installed)
file(REMOVE_RECURSE ${scratch})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${installed})

set(toolchain)
if(TOOLCHAIN)
  set(toolchain --toolchain ${TOOLCHAIN})
endif()
run(${CMAKE_COMMAND} -S ${source} -B ${scratch}/build -G ${GENERATOR} ${toolchain} -D CMAKE_BUILD_TYPE=Release
  -D "CMAKE_CXX_FLAGS=${FLAGS}" -D QovXml_DIR=${installed}/lib/cmake/QovXml)
run(${CMAKE_COMMAND} --build ${scratch}/build)

# Windows looks for the DLL beside the program.
file(GLOB dlls ${installed}/bin/*.dll)
if(dlls)
  file(COPY ${dlls} DESTINATION ${scratch}/build)
endif()
file(COPY ${PROJECT}/examples/xml/ DESTINATION ${scratch})
file(GLOB program ${scratch}/build/consumer ${scratch}/build/consumer.exe)
execute_process(COMMAND ${LAUNCHER} ${program} QovConfiguration.xml QovSettings.xml ApoPipelinesDefinition.xml
  WORKING_DIRECTORY ${scratch} OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT output MATCHES "${OUTCOME}")
  message(FATAL_ERROR "the consumer did not print \"${OUTCOME}\" but:\n${output}")
endif()

# README.md shows this very program.
file(READ ${source}/consumer.cpp program)
file(READ ${PROJECT}/README.md readme)
string(FIND "${readme}" "${program}" found)
if(found EQUAL -1)
  message(FATAL_ERROR "README.md does not show ${source}/consumer.cpp as it is")
endif()
