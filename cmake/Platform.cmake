# qovxml_platform: what links the platform's calls, Windows' own libraries or the stand-in for them.
add_library(qovxml_platform INTERFACE)
if(WIN32)
  target_link_libraries(qovxml_platform INTERFACE ole32 advapi32)
else()
  target_link_libraries(qovxml_platform INTERFACE winapi)
endif()
