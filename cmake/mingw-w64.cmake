# Toolchain: 64-bit Windows with mingw-w64 GCC (posix threads), tested under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)  # for GoogleTest
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)

# Packages, headers and libraries are those of mingw-w64 and of what the user names, never the building system's.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# mingw-w64's devicetopology.h misspells two names of the Windows SDK; the sources use the SDK's.
add_compile_definitions(GetTopologyObjects=GetTopologyObject ISubUnit=ISubunit)

# Products need no DLL of the compiler beside them, unless host and DLL are to share one C++ runtime.
option(QOVXML_SHARED_RUNTIME "Link to the compiler's runtime DLLs" OFF)
if(NOT QOVXML_SHARED_RUNTIME)
  add_link_options(-static)
endif()
