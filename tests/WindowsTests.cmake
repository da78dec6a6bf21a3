# The tests under Wine: once where it reports Windows 10, and what depends on the generation once where it reports 8.0.
#
# Left out, by name: what needs a Windows function to fail or a call to be watched, which only the stand-in can do. Whole
# runs begin their names with what they need.
set(stand_in_only "*StandInTest.*")
set(stand_in_scenarios "StandIn/*")
set(windows8_scenarios "Windows8/*")
message(STATUS "Only over the stand-in: ${stand_in_only};${stand_in_scenarios}")

function(add_wine_test name version program filter)
  add_test(NAME ${name} COMMAND ${program} --gtest_filter=${filter})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT QOVXML_WINE_VERSION=${version})
endfunction()

list(JOIN stand_in_only ":" excluded)
add_wine_test(unit win10 unit_tests "-${excluded}")
add_wine_test(faults win10 fault_tests "*")
add_wine_test(contract win10 contract_tests "*")
add_wine_test(host-parts win10 host_tests "-${excluded}")

add_wine_test(scenarios win10 scenario_tests "-${stand_in_scenarios}:${windows8_scenarios}")
add_wine_test(scenarios-windows8 win8 scenario_tests "${windows8_scenarios}")
add_wine_test(snapshots win10 snapshot_tests "-${excluded}:${stand_in_scenarios}:${windows8_scenarios}")
add_wine_test(snapshots-windows8 win8 snapshot_tests "${windows8_scenarios}")

# The real program, as a user starts it.
find_program(PYTEST NAMES pytest-3 pytest REQUIRED)
add_test(NAME program COMMAND ${PYTEST} -q -p no:cacheprovider -m "not posix" ${CMAKE_CURRENT_SOURCE_DIR}/host)
set_tests_properties(program PROPERTIES ENVIRONMENT
  "QOVXML_PROGRAM=$<TARGET_FILE:qovxml-configure>;QOVXML_LAUNCHER=${CMAKE_CROSSCOMPILING_EMULATOR}")

add_test(NAME dll COMMAND ${CMAKE_COMMAND}
  -D DLL=$<TARGET_FILE:QovXml>
  -D PROGRAM=$<TARGET_FILE:qovxml-configure>
  -D LAUNCHER=${CMAKE_CROSSCOMPILING_EMULATOR}
  -D VERSION=${PROJECT_VERSION}
  -D OBJDUMP=${CMAKE_OBJDUMP}
  -D OBJCOPY=${CMAKE_OBJCOPY}
  -D SCRATCH=${CMAKE_CURRENT_BINARY_DIR}
  -P ${CMAKE_CURRENT_SOURCE_DIR}/dll-test.cmake)

# Wine's own audio devices, with nothing simulated.
add_test(NAME wine-audio COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/wine-audio-test $<TARGET_FILE:qovxml-configure>
  ${PROJECT_SOURCE_DIR}/examples/xml ${PROJECT_BINARY_DIR}/wine-audio ${PROJECT_SOURCE_DIR}/build/native/qovxml-configure)
set_tests_properties(wine-audio PROPERTIES LABELS wine-audio)
