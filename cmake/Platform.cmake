# qovxml_platform: what links the platform's calls, Windows' own libraries or the stand-in for them. A program with the
# property QOVXML_ONE_FILE takes the stand-in into itself.
add_library(qovxml_platform INTERFACE)
if(WIN32)
  target_link_libraries(qovxml_platform INTERFACE ole32 advapi32)
else()
  target_link_libraries(qovxml_platform INTERFACE
    $<IF:$<BOOL:$<TARGET_PROPERTY:QOVXML_ONE_FILE>>,winapi_static,winapi>)
endif()
