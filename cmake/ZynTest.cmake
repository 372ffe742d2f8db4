# zyn_add_test(<name> SOURCES <file>... [LIBS <target>...] [NAMESPACE] [SERIAL] [TIMEOUT <seconds>] [LABELS <label>...])
#
# A GoogleTest program, one ctest entry per test. With NAMESPACE the whole program is one entry and runs inside a private
# network namespace whose only adapter is the loopback, so nothing it sends can reach a real network.

if(ZYN_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()

function(zyn_add_test name)
  cmake_parse_arguments(ARG "NAMESPACE;SERIAL" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  set(properties TIMEOUT ${ARG_TIMEOUT})
  if(ARG_LABELS)
    list(APPEND properties LABELS "${ARG_LABELS}")
  endif()
  if(ARG_SERIAL)
    list(APPEND properties RUN_SERIAL ON)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE zyn_options ${ARG_LIBS} GTest::gmock GTest::gtest GTest::gtest_main)
  if(ARG_NAMESPACE)
    add_test(NAME ${name} COMMAND "${PROJECT_SOURCE_DIR}/scripts/in-namespace.sh" $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES ${properties})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_PREFIX "${name}."
      PROPERTIES ${properties})
  endif()
endfunction()
