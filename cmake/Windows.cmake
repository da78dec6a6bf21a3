# What only the Windows build has: resources and hardening.
include(${CMAKE_CURRENT_LIST_DIR}/windows/EmbedManifest.cmake)

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

function(qovxml_windows_program target)
  qovxml_embed_manifest(${target})
  qovxml_harden(${target})
endfunction()

# A DLL named as Windows names them, with a version resource.
function(qovxml_windows_library target)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/windows/QovXml.rc.in ${CMAKE_CURRENT_BINARY_DIR}/QovXml.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/QovXml.rc)
  set_target_properties(${target} PROPERTIES PREFIX "")
  qovxml_harden(${target})
endfunction()
