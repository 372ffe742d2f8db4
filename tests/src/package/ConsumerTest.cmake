# Builds the consumer against the installation alone, and runs it. Builds the examples too, which search networks and so
# are run elsewhere.
foreach(folder consumer examples)
  file(REMOVE_RECURSE "${WORK_DIR}/${folder}")
endforeach()

function(build_against_the_installation source binary)
  execute_process(COMMAND "${CMAKE_COMMAND}" -S "${source}" -B "${binary}" "-DCMAKE_PREFIX_PATH=${WORK_DIR}/moved"
    "-DCMAKE_CXX_COMPILER=${CXX}" COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND "${CMAKE_COMMAND}" --build "${binary}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

build_against_the_installation("${CONSUMER_DIR}" "${WORK_DIR}/consumer")
execute_process(COMMAND "${WORK_DIR}/consumer/consumer" COMMAND_ERROR_IS_FATAL ANY)
build_against_the_installation("${EXAMPLES_DIR}" "${WORK_DIR}/examples")
