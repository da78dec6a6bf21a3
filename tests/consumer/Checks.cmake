# Beside README's program: what that program shows by itself neither on every system nor on every machine.
add_executable(utf8 ${CMAKE_CURRENT_LIST_DIR}/Utf8.cpp)
target_include_directories(utf8 PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(utf8 PRIVATE QovXml::QovXml)

add_executable(exceptions ${CMAKE_CURRENT_LIST_DIR}/Exceptions.cpp)
target_link_libraries(exceptions PRIVATE QovXml::QovXml)

add_executable(without-manifest main.cpp)
target_link_libraries(without-manifest PRIVATE QovXml::QovXml)

# README's test of a host program, where the package has the simulation.
if(SIMULATION)
  include(${SIMULATION})
endif()
