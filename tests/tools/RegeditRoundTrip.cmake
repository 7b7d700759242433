# Checks that Wine's own regedit reads what the library exports: values are set
# with kwcore.exe in the build's Wine prefix, exported with "kwcore reg export",
# imported with "regedit /s" into a second prefix of the test's own, and read
# back there with "kwcore reg get". Only forms regedit parses are used: strings
# with quotes and backslashes, dwords, byte lists of one line (at most 17
# bytes).
#   cmake -DWINE=... -DWINESERVER=... -DWINE_SCRIPT=KWCoreWine.cmake -DTOOL=kwcore.exe
#         -DBUILD_PREFIX=... -DFRESH_PREFIX=... -DWORK_DIR=... -P RegeditRoundTrip.cmake
cmake_minimum_required(VERSION 3.25)

set(ENV{WINEDEBUG} "-all")
set(ENV{WINEDLLOVERRIDES} "mscoree,mshtml=")
set(key "HKCU\\Software\\kwcore-regedit-test")
set(file "${WORK_DIR}/regedit-round-trip.reg")
# The same file as Windows programs name it (Wine maps / to drive Z:).
string(REPLACE "/" "\\" windows_file "Z:${file}")

# name, type, data as "kwcore reg set" takes them, data as "get" prints them.
set(names Text Count Seventeen Short List)
set(Text_type REG_SZ)
set(Text_data "say \"hi\" at C:\\dir\\ and \\\\server")
set(Text_printed "${Text_data}")
set(Count_type REG_DWORD)
set(Count_data 0x12345678)
set(Count_printed 305419896)
set(Seventeen_type REG_BINARY)
set(Seventeen_data "00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,ff")
set(Seventeen_printed "${Seventeen_data}")
set(Short_type REG_BINARY)
set(Short_data "7f 80 fe")
set(Short_printed "7f,80,fe")
set(List_type REG_MULTI_SZ)
set(List_data "one\\0two\\0three")
set(List_printed "${List_data}")

set(failures "")

# Runs kwcore.exe in prefix; sets status and output (CRs removed).
function(run_tool prefix)
  set(ENV{WINEPREFIX} "${prefix}")
  execute_process(COMMAND "${WINE}" "${TOOL}" ${ARGN} RESULT_VARIABLE result
                  OUTPUT_VARIABLE out ERROR_VARIABLE out INPUT_FILE /dev/null)
  string(REPLACE "\r" "" out "${out}")
  set(status "${result}" PARENT_SCOPE)
  set(output "${out}" PARENT_SCOPE)
endfunction()

function(wine_action action)
  execute_process(COMMAND "${CMAKE_COMMAND}" -DACTION=${action} "-DWINE=${WINE}"
                          "-DWINESERVER=${WINESERVER}" "-DPREFIX=${FRESH_PREFIX}" -P "${WINE_SCRIPT}"
                  RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "could not ${action} the Wine prefix ${FRESH_PREFIX}")
  endif()
endfunction()

# 1. The values, written through the library in the build's prefix.
foreach(name IN LISTS names)
  run_tool("${BUILD_PREFIX}" reg set "${key}" ${name} ${${name}_type} "${${name}_data}")
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "kwcore reg set ${name} failed (${status}): ${output}")
  endif()
endforeach()
run_tool("${BUILD_PREFIX}" reg set "${key}\\Sub" Nested REG_SZ "below")
run_tool("${BUILD_PREFIX}" reg export "${key}" "${windows_file}")
if(NOT status EQUAL 0)
  message(FATAL_ERROR "kwcore reg export failed (${status}): ${output}")
endif()
file(READ "${file}" exported)
message("${exported}")

# 2. A prefix of the test's own, made once and kept in the build tree; the key
#    is deleted there first, so the import starts from nothing.
if(NOT EXISTS "${FRESH_PREFIX}/kwcore-prefix-ready")
  wine_action(create)
  file(TOUCH "${FRESH_PREFIX}/kwcore-prefix-ready")
endif()
wine_action(start)
file(WRITE "${WORK_DIR}/regedit-delete.reg"
     "REGEDIT4\r\n\r\n[-HKEY_CURRENT_USER\\Software\\kwcore-regedit-test]\r\n")
string(REPLACE "/" "\\" windows_delete "Z:${WORK_DIR}/regedit-delete.reg")
set(ENV{WINEPREFIX} "${FRESH_PREFIX}")
execute_process(COMMAND "${WINE}" regedit /s "${windows_delete}" INPUT_FILE /dev/null
                OUTPUT_QUIET ERROR_QUIET)
run_tool("${FRESH_PREFIX}" reg list "${key}")
if(status EQUAL 0)
  list(APPEND failures "the key is still there before the import: ${output}")
endif()

# 3. regedit imports the export; every value reads back as written.
set(ENV{WINEPREFIX} "${FRESH_PREFIX}")
execute_process(COMMAND "${WINE}" regedit /s "${windows_file}" RESULT_VARIABLE result
                OUTPUT_VARIABLE out ERROR_VARIABLE out INPUT_FILE /dev/null)
if(NOT result EQUAL 0)
  list(APPEND failures "regedit /s failed (${result}): ${out}")
endif()
foreach(name IN LISTS names)
  run_tool("${FRESH_PREFIX}" reg get "${key}" ${name})
  if(NOT status EQUAL 0 OR NOT output STREQUAL "${${name}_printed}\n")
    list(APPEND failures "${name}: expected '${${name}_printed}', read (${status}) '${output}'")
  endif()
endforeach()
run_tool("${FRESH_PREFIX}" reg get "${key}\\Sub" Nested)
if(NOT output STREQUAL "below\n")
  list(APPEND failures "Sub\\Nested: expected 'below', read (${status}) '${output}'")
endif()
# Types and sizes too: exported again from the second prefix, the file is the
# same byte for byte (Wine lists values by name in both).
set(again "${WORK_DIR}/regedit-round-trip-again.reg")
string(REPLACE "/" "\\" windows_again "Z:${again}")
run_tool("${FRESH_PREFIX}" reg export "${key}" "${windows_again}")
if(status EQUAL 0)
  file(READ "${again}" reexported)
endif()
if(NOT status EQUAL 0 OR NOT reexported STREQUAL exported)
  list(APPEND failures "exported again (${status}): ${output}\n${reexported}")
endif()

wine_action(stop)
if(failures)
  list(JOIN failures "\n" failures)
  message(FATAL_ERROR "${failures}")
endif()
