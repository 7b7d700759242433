# Manages the Wine prefix and server the cross-built tests run in:
#   cmake -DACTION=create|start|stop -DWINE=... -DWINESERVER=... -DPREFIX=... -P
#
# create  makes the prefix; wineboot's complaints about the 32-bit parts a
#         64-bit-only Wine lacks stay out of the log unless it fails.
# start   keeps a server with its system processes running until stop, or
#         until nothing has run in the prefix for five minutes (an interrupted
#         test run leaves nothing behind for long). The system processes
#         inherit the standard streams of the program that started them, so
#         ones started by a test would hold its output open until the server
#         winds down, seconds after every test.
# stop    ends that server and everything still running in the prefix.

set(ENV{WINEPREFIX} "${PREFIX}")
set(ENV{WINEDEBUG} "-all")
set(ENV{WINEDLLOVERRIDES} "mscoree,mshtml=")

if(ACTION STREQUAL "create")
  execute_process(COMMAND "${WINE}" wineboot --init
                  RESULT_VARIABLE _result OUTPUT_VARIABLE _output ERROR_VARIABLE _output)
  if(_result EQUAL 0)
    # The registry reaches the disk when the server stops.
    execute_process(COMMAND "${WINESERVER}" -w RESULT_VARIABLE _result)
  endif()
  if(NOT _result EQUAL 0 OR NOT EXISTS "${PREFIX}/system.reg")
    message(FATAL_ERROR "Could not create the Wine prefix ${PREFIX}:\n${_output}")
  endif()
elseif(ACTION STREQUAL "start")
  # Exit code 2 means a server is already running for the prefix.
  execute_process(COMMAND "${WINESERVER}" -p300 RESULT_VARIABLE _result
                  INPUT_FILE /dev/null OUTPUT_FILE /dev/null ERROR_FILE /dev/null)
  if(NOT _result EQUAL 0 AND NOT _result EQUAL 2)
    message(FATAL_ERROR "wineserver -p failed (${_result})")
  endif()
  execute_process(COMMAND "${WINE}" wineboot RESULT_VARIABLE _result
                  INPUT_FILE /dev/null OUTPUT_FILE /dev/null ERROR_FILE /dev/null)
  if(NOT _result EQUAL 0)
    message(FATAL_ERROR "wineboot failed (${_result})")
  endif()
elseif(ACTION STREQUAL "stop")
  # Exit code 1 means no server was running.
  execute_process(COMMAND "${WINESERVER}" -k RESULT_VARIABLE _result)
  if(NOT _result EQUAL 0 AND NOT _result EQUAL 1)
    message(FATAL_ERROR "wineserver -k failed (${_result})")
  endif()
else()
  message(FATAL_ERROR "ACTION must be create, start or stop")
endif()
