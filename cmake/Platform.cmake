# qovxml_platform: what links the platform's calls, Windows' own libraries or the stand-in for them. A program with the
# property QOVXML_ONE_FILE takes the stand-in into itself.
add_library(qovxml_platform INTERFACE)
# The folder that holds, in each room, the files that differ by platform.
if(WIN32)
  set(system windows)
  target_link_libraries(qovxml_platform INTERFACE ole32 advapi32)
else()
  set(system standin)
  target_link_libraries(qovxml_platform INTERFACE
    $<IF:$<BOOL:$<TARGET_PROPERTY:QOVXML_ONE_FILE>>,winapi_static,winapi>)
endif()
