# Another runtime takes the place of our own, under the same target. It is borrowed: nothing of it is installed.
if(NOT EXISTS "${ZYN_GENAPI_INCLUDE_DIR}/GenICam.h")
  message(FATAL_ERROR "ZYN_GENAPI_INCLUDE_DIR does not hold GenICam.h: '${ZYN_GENAPI_INCLUDE_DIR}'")
endif()
foreach(library IN LISTS ZYN_GENAPI_LIBRARIES)
  if(NOT EXISTS "${library}")
    message(FATAL_ERROR "ZYN_GENAPI_LIBRARIES names a file that does not exist: '${library}'")
  endif()
endforeach()
if(NOT ZYN_GENAPI_LIBRARIES)
  message(FATAL_ERROR "ZYN_GENAPI_LIBRARIES must name the shared libraries of the runtime")
endif()

set(libraries ${ZYN_GENAPI_LIBRARIES})
list(POP_FRONT libraries library)
get_filename_component(soname "${library}" NAME)
add_library(zyn_genapi SHARED IMPORTED GLOBAL)
# Foreign headers are not held to our warnings.
set_target_properties(zyn_genapi PROPERTIES
  IMPORTED_LOCATION "${library}"
  IMPORTED_SONAME "${soname}"
  INTERFACE_INCLUDE_DIRECTORIES "${ZYN_GENAPI_INCLUDE_DIR}"
  INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${ZYN_GENAPI_INCLUDE_DIR}"
  INTERFACE_LINK_LIBRARIES "${libraries}")
