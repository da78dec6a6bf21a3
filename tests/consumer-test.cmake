# Host programs outside the project, built against what `cmake --install` lays out: README's, exactly as it is shown there and
# run on the example files, and the checks of tests/consumer. For Windows also with a C++ runtime that host and DLL share.
include(${CMAKE_CURRENT_LIST_DIR}/support/Run.cmake)

# Writes README.md's code block in `language` that begins with `start`.
function(extract_from_readme file language start)
  file(READ ${PROJECT}/README.md readme)
  if(NOT readme MATCHES "```${language}\n(${start}[^`]*)```")
    message(FATAL_ERROR "README.md has no ${language} block that begins with \"${start}\"")
  endif()
  file(WRITE ${file} "${CMAKE_MATCH_1}")
endfunction()

function(configure source build)
  set(arguments -G ${GENERATOR} -D CMAKE_BUILD_TYPE=Release -D "CMAKE_CXX_FLAGS=${FLAGS}" -D CMAKE_CXX_COMPILER=${COMPILER}
    -D CMAKE_CXX_COMPILER_LAUNCHER=${COMPILER_LAUNCHER})
  if(TOOLCHAIN)
    list(APPEND arguments --toolchain ${TOOLCHAIN})
  endif()
  run(ignored ${CMAKE_COMMAND} -S ${source} -B ${build} ${arguments} ${ARGN})
endfunction()

# expect(program arguments... EXIT code PRINTS regular expression)
function(expect program)
  cmake_parse_arguments(arg "" "EXIT;PRINTS" "" ${ARGN})
  file(GLOB file ${programs}/${program} ${programs}/${program}.exe)
  execute_process(COMMAND ${LAUNCHER} ${file} ${arg_UNPARSED_ARGUMENTS} WORKING_DIRECTORY ${scratch}/xml
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL arg_EXIT OR NOT output MATCHES "${arg_PRINTS}")
    message(SEND_ERROR "${file} ${arg_UNPARSED_ARGUMENTS}: expected exit code ${arg_EXIT} and \"${arg_PRINTS}\", "
      "but it ended with ${result} and printed:\n${output}")
  endif()
endfunction()

# Builds the host programs against the package in `installed`, into `programs`.
function(build_programs installed programs)
  configure(${scratch}/source ${programs} -D CMAKE_PREFIX_PATH=${installed} ${ARGN})
  run(ignored ${CMAKE_COMMAND} --build ${programs})
  # Windows looks for the DLL beside the program.
  file(GLOB dlls ${installed}/bin/*.dll)
  file(COPY ${dlls} DESTINATION ${programs})
endfunction()

set(scratch ${BUILD}/consumer)
set(files QovConfiguration.xml QovSettings.xml ApoPipelinesDefinition.xml)
file(REMOVE_RECURSE ${scratch})
file(COPY ${PROJECT}/examples/xml DESTINATION ${scratch})
extract_from_readme(${scratch}/source/main.cpp cpp "#include <QovXml.h>")
extract_from_readme(${scratch}/source/test.cpp cpp "#include <QovXml.h>\n#include <machine")
extract_from_readme(${scratch}/source/CMakeLists.txt cmake "cmake_minimum_required")
extract_from_readme(${scratch}/simulation.cmake cmake "find_package[^\n]*Simulation")
file(APPEND ${scratch}/source/CMakeLists.txt "include(${PROJECT}/tests/consumer/Checks.cmake)\n")

run(ignored ${CMAKE_COMMAND} --install ${BUILD} --prefix ${scratch}/installed)
set(programs ${scratch}/programs)
build_programs(${scratch}/installed ${programs} -D SIMULATION=${scratch}/simulation.cmake)
expect(your-program EXIT 2 PRINTS "^usage: your-program CONFIGURATION SETTINGS PIPELINES")
expect(utf8 EXIT 0)

# README's test, on installed machines; the first leaves the files as they are.
set(machines ../installed/share/QovXml/examples/machines)
expect(your-test ${machines}/refused-two-modes.json ${files} EXIT 1
  PRINTS "A run APO module installed in more than one mode.*\nAPO module installed in more than one mode")
expect(your-test ${machines}/laptop-spatialf.json ${files} EXIT 0
  PRINTS "A run completes.*[1-9][0-9]* messages, [1-9][0-9]* platform calls")
file(READ ${scratch}/xml/QovConfiguration.xml edited)
if(NOT edited MATCHES "DeviceId:func_01&amp;ven_10ec&amp;dev_0285")
  message(SEND_ERROR "README's test did not run the library on the simulated laptop")
endif()
file(COPY ${PROJECT}/examples/xml DESTINATION ${scratch})

# The library alone, which looks neither for a JSON nor for a command-line library.
set(library_alone -D QOVXML_BUILD_HOST=OFF
  -D CMAKE_DISABLE_FIND_PACKAGE_nlohmann_json=ON -D CMAKE_DISABLE_FIND_PACKAGE_CLI11=ON)
if(NOT TOOLCHAIN)
  expect(your-program ${files} EXIT 1 PRINTS "Failed to initialize COM device interface! Result: 0x80040154")
  expect(exceptions EXIT 0 PRINTS "^uncaught exceptions: 0")
  configure(${PROJECT} ${scratch}/library ${library_alone})
  return()
endif()

# Windows 10 tells its version to a program with the manifest alone.
expect(your-program ${files} EXIT 0
  PRINTS "Detected Windows 8.1 or greater.*QovXml: ConfigureQovXmls\\(\\) completed successfully")
expect(without-manifest ${files} EXIT 0 PRINTS "Detected Windows 8.0 or lower")
expect(exceptions EXIT 0 PRINTS "^uncaught exceptions: -1")

configure(${PROJECT} ${scratch}/library ${library_alone} -D QOVXML_SHARED_RUNTIME=ON)
run(ignored ${CMAKE_COMMAND} --build ${scratch}/library)
run(ignored ${CMAKE_COMMAND} --install ${scratch}/library --prefix ${scratch}/installed-shared-runtime)
set(programs ${scratch}/programs-shared-runtime)
build_programs(${scratch}/installed-shared-runtime ${programs} -D QOVXML_SHARED_RUNTIME=ON)
foreach(dll libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
  execute_process(COMMAND ${COMPILER} -print-file-name=${dll}.dll OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
  file(COPY ${file} DESTINATION ${programs})
endforeach()
expect(exceptions EXIT 0 PRINTS "^uncaught exceptions: 0")
