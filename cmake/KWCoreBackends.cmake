# Optional back-ends: one option each, on by default where its dependency is
# found, and recorded in the generated <kwcore/Config.h> so that hosts and the
# umbrella header see what this build of the library has.

find_package(XercesC)
option(KWCORE_WITH_XML "Build the XML file archive on Xerces-C" ${XercesC_FOUND})
if(KWCORE_WITH_XML AND NOT XercesC_FOUND)
  message(FATAL_ERROR "KWCORE_WITH_XML is ON but Xerces-C was not found (Debian: libxerces-c-dev)")
endif()

set(KWCORE_HAS_XML ${KWCORE_WITH_XML})
configure_file(${CMAKE_CURRENT_LIST_DIR}/Config.h.in ${PROJECT_BINARY_DIR}/include/kwcore/Config.h)
