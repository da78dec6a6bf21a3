# qovxml_compile_options(target): what every target of this project is compiled with.
function(qovxml_compile_options target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /utf-8 $<$<BOOL:${QOVXML_WARNINGS_AS_ERRORS}>:/WX>)
    # The C runtime's own file functions are meant: they are the ones that the other systems have too.
    target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                             $<$<BOOL:${QOVXML_WARNINGS_AS_ERRORS}>:-Werror>)
  endif()
  if(WIN32)
    target_compile_definitions(${target} PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
  endif()
endfunction()
