# Runs a program and fails unless it exits with STATUS and its standard output
# and error, taken together, match the regular expression EXPECTED:
#   cmake -DSTATUS=1 -DEXPECTED=REGEX -P ExpectToolResult.cmake PROGRAM [ARGS...]
# (CTest alone checks either the exit status or the output of a test, not both.)
cmake_minimum_required(VERSION 3.25)

# The arguments after the script's own name are the command.
set(command "")
set(state options)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(index RANGE 1 ${last})
  if(state STREQUAL "command")
    list(APPEND command "${CMAKE_ARGV${index}}")
  elseif(state STREQUAL "script")
    set(state command)
  elseif(CMAKE_ARGV${index} STREQUAL "-P")
    set(state script)
  endif()
endforeach()
if(NOT command)
  message(FATAL_ERROR "usage: cmake -DSTATUS=N -DEXPECTED=REGEX -P ExpectToolResult.cmake PROGRAM [ARGS...]")
endif()

execute_process(COMMAND ${command} RESULT_VARIABLE status OUTPUT_VARIABLE output
                ERROR_VARIABLE output)
message("${output}")
if(NOT status STREQUAL STATUS)
  message(FATAL_ERROR "exit status ${status}, expected ${STATUS}")
endif()
if(NOT output MATCHES "${EXPECTED}")
  message(FATAL_ERROR "the output does not match: ${EXPECTED}")
endif()
