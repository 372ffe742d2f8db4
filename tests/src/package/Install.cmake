# Installs the project, and moves the installation: what works where it lies then needs nothing of the build tree and
# names no folder.
file(REMOVE_RECURSE "${WORK_DIR}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --config "${CONFIG}" --prefix "${WORK_DIR}/prefix"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${WORK_DIR}/prefix" "${WORK_DIR}/moved")
