# The package's component Simulation: machine files, simulated machine, call records and rehearsal as one archive, so that
# integrators can test programs of their own against any described machine.
find_package(Threads REQUIRED)
set(headers ${CMAKE_INSTALL_INCLUDEDIR}/QovXmlSimulation)

add_library(Simulation STATIC
  $<TARGET_OBJECTS:machine>
  $<TARGET_OBJECTS:qovxml_common>
  $<TARGET_OBJECTS:rehearsal>
  $<TARGET_OBJECTS:simulation>)
set_target_properties(Simulation PROPERTIES OUTPUT_NAME QovXmlSimulation LINKER_LANGUAGE CXX)
target_compile_features(Simulation INTERFACE cxx_std_20)
target_include_directories(Simulation INTERFACE $<INSTALL_INTERFACE:${headers}>)
target_link_libraries(Simulation INTERFACE QovXml Threads::Threads)
if(WIN32)
  target_link_libraries(Simulation INTERFACE ole32 advapi32)
else()
  target_link_libraries(Simulation INTERFACE winapi)
  target_include_directories(Simulation SYSTEM INTERFACE $<INSTALL_INTERFACE:${headers}/winapi>)
  install(DIRECTORY winapi/include/ DESTINATION ${headers}/winapi)
endif()

install(TARGETS Simulation EXPORT QovXmlSimulationTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT QovXmlSimulationTargets NAMESPACE QovXml:: DESTINATION ${package_folder})
foreach(header IN ITEMS
    machine/MachineDescription.h
    machine/MachineJson.h
    machine/PlatformCalls.h
    machine/TopologyDescription.h
    machine/Utf16.h
    rehearsal/Rehearsal.h
    simulation/CallMonitor.h
    simulation/SimulatedMachine.h
    simulation/UnusableMachine.h)
  get_filename_component(room ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${headers}/${room})
endforeach()
install(FILES machine/machine.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/QovXml)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/QovXml)
