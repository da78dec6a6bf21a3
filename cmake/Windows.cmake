# What only the Windows build has: resources and hardening.
if(NOT WIN32)
  function(qovxml_windows_program target)
  endfunction()
  function(qovxml_windows_library target)
  endfunction()
  return()
endif()

enable_language(RC)

function(qovxml_harden target)
  if(MINGW)
    target_link_options(${target} PRIVATE -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
  endif()
endfunction()

# A program that Windows tells its true version.
function(qovxml_windows_program target)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/windows/Application.rc)
  if(MSVC)
    target_link_options(${target} PRIVATE /MANIFEST:NO)
  endif()
  qovxml_harden(${target})
endfunction()

# A DLL named as Windows names them, with a version resource.
function(qovxml_windows_library target)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/windows/QovXml.rc.in ${CMAKE_CURRENT_BINARY_DIR}/QovXml.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/QovXml.rc)
  set_target_properties(${target} PROPERTIES PREFIX "")
  qovxml_harden(${target})
endfunction()
