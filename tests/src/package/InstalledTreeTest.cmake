# The installation has the shape of the build tree, and its tool finds simulated cameras with nothing set in the
# environment. IN_NAMESPACE runs a command where nothing it sends can reach a real network.
cmake_minimum_required(VERSION 3.25)
set(tree "${WORK_DIR}/moved")
set(libraries "${tree}/${LIBDIR}")

set(programs "")
if(HAS_TOOLS)
  set(programs bin/zyncam bin/zyn-virtual-camera)
endif()
foreach(file ${programs} "${LIBDIR}/libZynCamera.so" "${LIBDIR}/libKELGeniCam.so" "${LIBDIR}/libGenApi.so"
    "${LIBDIR}/libGevIpLib.so" include/ZynCamera.h include/GenApi/GenICam.h)
  if(NOT EXISTS "${tree}/${file}")
    message(SEND_ERROR "there is no ${file}")
  endif()
endforeach()

# A file too many would be loaded as a producer, too.
function(expect_files folder)
  file(GLOB_RECURSE files RELATIVE "${libraries}/zyncamera/${folder}" "${libraries}/zyncamera/${folder}/*")
  if(NOT files STREQUAL "${ARGN}")
    message(SEND_ERROR "${folder} holds \"${files}\", not \"${ARGN}\"")
  endif()
endfunction()
expect_files(gentl ZynTL.cti)
expect_files(gentl-sim ZynSimTL.cti)

if(NOT HAS_TOOLS)
  return()
endif()

# Runs the tool without any environment variable. The code may be "any".
function(run_zyncam expected_code)
  execute_process(COMMAND "${IN_NAMESPACE}" env -i "${tree}/bin/zyncam" ${ARGN}
    OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE code)
  if(NOT expected_code STREQUAL "any" AND NOT code EQUAL expected_code)
    message(SEND_ERROR "zyncam ${ARGN} ended with ${code}: ${out}${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(expect_cameras expected)
  string(JSON count LENGTH "${out}")
  if(NOT count EQUAL expected)
    message(SEND_ERROR "${expected} cameras expected: ${out}")
  endif()
endfunction()

run_zyncam(0 --simulate list --json)
expect_cameras(6)
run_zyncam(0 list --simulate --json)
expect_cameras(6)
run_zyncam(0 list --json)
expect_cameras(0)
run_zyncam(0 --simulate get -c SIM0001 DeviceModelName)
if(NOT out STREQUAL "KEL-LP2000\n")
  message(SEND_ERROR "SIM0001 is ${out}")
endif()

# Without the option only the producer of real cameras is loaded, and from here. What else the doctor finds depends on the
# computer.
run_zyncam(any doctor --json)
string(JSON producer GET "${out}" findings 0 subject)
string(JSON verdict GET "${out}" findings 0 verdict)
string(JSON next GET "${out}" findings 1 topic)
if(NOT "${producer} ${verdict}" STREQUAL "${libraries}/zyncamera/gentl/ZynTL.cti ok" OR next STREQUAL "producers")
  message(SEND_ERROR "other producers than the installed one: ${out}")
endif()

# No other copy of the simulator is taken when this one is not there.
file(RENAME "${libraries}/zyncamera/gentl-sim" "${libraries}/zyncamera/gentl-sim-away")
run_zyncam(1 --simulate list --json)
file(RENAME "${libraries}/zyncamera/gentl-sim-away" "${libraries}/zyncamera/gentl-sim")
string(JSON advice GET "${out}" error advice)
if(NOT advice STREQUAL "they belong into the folder ${libraries}/zyncamera/gentl-sim")
  message(SEND_ERROR "the simulator is looked for elsewhere: ${out}")
endif()
