# qovxml_embed_manifest(target): makes the program one that Windows tells its true version and whose narrow texts are UTF-8.
# Does nothing off Windows.
# A part of the installed package, and used by this project's own programs.
if(WIN32 AND NOT MSVC)
  enable_language(RC)
endif()

function(qovxml_embed_manifest target)
  if(MSVC)
    # The linker merges it with the manifest that it makes itself.
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Application.manifest)
  elseif(WIN32)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Application.rc)
  endif()
endfunction()
