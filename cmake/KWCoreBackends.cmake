# Optional back-ends. Each is decided here, once, by one option
# KWCORE_WITH_<NAME>: on by default where its dependency is found, an error
# when asked for without it. The decision is recorded as KWCORE_HAS_<NAME>
# (0 or 1) in the generated and installed <kwcore/Config.h>, which the
# umbrella header tests, so hosts see what the library they link has. Where a
# back-end is off, its public headers are not installed.
#
# Everything else (sources, tests, tools, benchmarks, fuzzers) follows
# KWCORE_WITH_<NAME> and never looks for the dependency again.
#
# A new back-end is one more call at the end of this file, then its sources
# and tests under if(KWCORE_WITH_<NAME>).

set(KWCORE_BACKEND_DEFINES "")
set(KWCORE_BACKEND_HEADERS_OFF "")

# kwcore_backend(<NAME> [PACKAGE <find_package name> DEBIAN <package>]
#                DOC <what it builds> [HEADERS <folder under include/kwcore>])
# Without PACKAGE the back-end needs nothing beyond the library and is on by
# default.
macro(kwcore_backend name)
  cmake_parse_arguments(_backend "" "PACKAGE;DEBIAN;DOC;HEADERS" "" ${ARGN})
  if(_backend_PACKAGE)
    find_package(${_backend_PACKAGE})
    set(_backend_available ${${_backend_PACKAGE}_FOUND})
  else()
    set(_backend_available ON)
  endif()
  option(KWCORE_WITH_${name} "Build ${_backend_DOC}" ${_backend_available})
  if(KWCORE_WITH_${name} AND NOT _backend_available)
    message(FATAL_ERROR "KWCORE_WITH_${name} is ON but ${_backend_PACKAGE} was not found "
                        "(Debian: ${_backend_DEBIAN})")
  endif()
  if(KWCORE_WITH_${name})
    set(_backend_value 1)
  else()
    set(_backend_value 0)
    if(_backend_HEADERS)
      list(APPEND KWCORE_BACKEND_HEADERS_OFF ${_backend_HEADERS})
    endif()
  endif()
  message(STATUS "KWCORE_WITH_${name}=${KWCORE_WITH_${name}}: ${_backend_DOC}")
  if(KWCORE_BACKEND_DEFINES)
    string(APPEND KWCORE_BACKEND_DEFINES "\n\n")
  endif()
  string(APPEND KWCORE_BACKEND_DEFINES
         "// 1 where ${_backend_DOC} is built in.\n#define KWCORE_HAS_${name} ${_backend_value}")
endmacro()

kwcore_backend(XML PACKAGE XercesC DEBIAN libxerces-c-dev HEADERS serial/xml
               DOC "the XML file archive (CKWXMLFileArchive, on Xerces-C)")
kwcore_backend(REGISTRY HEADERS serial/registry
               DOC "the registry serializer (CKWRegistrySerializer)")

configure_file(${CMAKE_CURRENT_LIST_DIR}/Config.h.in ${PROJECT_BINARY_DIR}/include/kwcore/Config.h
               @ONLY)
