# zyn_add_producer(<target> <output_name> [OUTPUT_DIR <dir>] [INSTALL_DIR <dir> | NO_INSTALL] SOURCES <file>... [LIBS <target>...])
#
# Builds <output_name>.cti, a GenTL producer: the kit plus one backend, whose sources define
# zyn::producer::CreateBackend(). It exports the 64 C functions and nothing else. It lies in OUTPUT_DIR, by default
# ${ZYN_GENTL_OUTPUT_DIRECTORY}, and is installed to INSTALL_DIR, by default ${ZYN_GENTL_INSTALL_DIR}, unless NO_INSTALL is
# given.

set(ZYN_PRODUCER_KIT_DIR "${CMAKE_CURRENT_LIST_DIR}" CACHE INTERNAL "Where the producer kit's link files lie")

function(zyn_add_producer target output_name)
  cmake_parse_arguments(ARG "NO_INSTALL" "OUTPUT_DIR;INSTALL_DIR" "SOURCES;LIBS" ${ARGN})
  if(NOT ARG_OUTPUT_DIR)
    set(ARG_OUTPUT_DIR "${ZYN_GENTL_OUTPUT_DIRECTORY}")
  endif()
  if(NOT ARG_INSTALL_DIR)
    set(ARG_INSTALL_DIR "${ZYN_GENTL_INSTALL_DIR}")
  endif()
  add_library(${target} MODULE ${ARG_SOURCES})
  # Nothing in the module refers to the C functions, so the linker has to be told to keep them.
  target_link_libraries(${target} PRIVATE zyn_options "$<LINK_LIBRARY:WHOLE_ARCHIVE,zyn_producer_kit>" ${ARG_LIBS})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX ".cti" OUTPUT_NAME "${output_name}"
    LIBRARY_OUTPUT_DIRECTORY "${ARG_OUTPUT_DIR}"
    INSTALL_RPATH "${ZYN_ORIGIN};${ZYN_ORIGIN}/../..")
  if(APPLE)
    set(exports "${ZYN_PRODUCER_KIT_DIR}/exports.txt")
    target_link_options(${target} PRIVATE "-Wl,-exported_symbols_list,${exports}")
  else()
    # Every producer exports the same names: bind our own calls inside, whatever the process already holds.
    set(exports "${ZYN_PRODUCER_KIT_DIR}/exports.map")
    target_link_options(${target} PRIVATE "-Wl,--version-script,${exports}" -Wl,-Bsymbolic-functions)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${exports}")
  if(NOT ARG_NO_INSTALL)
    install(TARGETS ${target} LIBRARY DESTINATION "${ARG_INSTALL_DIR}")
  endif()
endfunction()
