# Cross-compiling for Windows x86-64 with Debian's MinGW-w64 compilers.
#
# The posix-thread variants are required: the win32-thread ones lack
# std::thread and std::mutex. Test programs run under Wine, in a Wine prefix
# private to the build tree so a developer's own ~/.wine is never touched.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KWCORE_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KWCORE_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KWCORE_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KWCORE_MINGW_TRIPLE}-windres)

# Libraries, headers and packages come from the MinGW sysroot only, so the
# build never picks up the host's Linux libraries.
set(CMAKE_FIND_ROOT_PATH /usr/${KWCORE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Debian installs the 64-bit loader outside PATH; /usr/bin/wine only wraps it.
find_program(KWCORE_WINE NAMES wine64 wine PATHS /usr/lib/wine)
find_program(KWCORE_WINESERVER NAMES wineserver64 wineserver PATHS /usr/lib/wine)
if(KWCORE_WINE)
  set(KWCORE_WINEPREFIX ${CMAKE_BINARY_DIR}/wineprefix)
  # mscoree and mshtml are disabled so a new prefix never asks to install
  # Mono or Gecko.
  set(CMAKE_CROSSCOMPILING_EMULATOR
      ${CMAKE_COMMAND} -E env
      WINEPREFIX=${KWCORE_WINEPREFIX}
      WINEDEBUG=-all
      WINEDLLOVERRIDES=mscoree,mshtml=
      ${KWCORE_WINE})
endif()
