# Settings that every target of this project shares, and the shape of the build tree:
# bin/ for programs, lib/ for libraries, lib/zyncamera/gentl for GenTL producers,
# lib/zyncamera/gentl-sim for the one of the simulated cameras. The installed tree is the same.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(ZYN_GENTL_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib/zyncamera/gentl")
set(ZYN_GENTL_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}/zyncamera/gentl")
set(ZYN_GENTL_SIM_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib/zyncamera/gentl-sim")
set(ZYN_GENTL_SIM_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}/zyncamera/gentl-sim")

if(APPLE)
  set(ZYN_ORIGIN "@loader_path")
else()
  set(ZYN_ORIGIN "$ORIGIN")
endif()
set(CMAKE_INSTALL_RPATH "${ZYN_ORIGIN}" "${ZYN_ORIGIN}/../${CMAKE_INSTALL_LIBDIR}")

find_package(Threads REQUIRED)

# Link it PRIVATE: warnings are this project's business, not its users'.
add_library(zyn_options INTERFACE)
target_compile_options(zyn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual -Wundef -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(zyn_options INTERFACE -Wthread-safety)
endif()
target_link_libraries(zyn_options INTERFACE Threads::Threads)

if(ZYN_SANITIZE)
  # Reports name lines; more debug information only costs time.
  add_compile_options(-fsanitize=${ZYN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g1)
  add_link_options(-fsanitize=${ZYN_SANITIZE})
endif()
# Lets libFuzzer see which code an input reaches.
if(ZYN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(NOT APPLE AND NOT ZYN_SANITIZE)
  add_link_options(-Wl,--no-undefined)
endif()

# A shared library that applications link against: versioned, with the SONAME lib<name>.so.1.
function(zyn_shared_library target output_name)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${output_name} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()
