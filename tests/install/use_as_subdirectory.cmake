# Lets the consumer take the source tree as a part of its own build.
include("${CMAKE_CURRENT_LIST_DIR}/steps.cmake")

file(REMOVE_RECURSE "${WORK_DIR}")
build_and_run_consumer("-DVUKSIM_SOURCE_DIR=${SOURCE_DIR}" "-DVUKSIM_PLATFORM_DIR=${PLATFORM_DIR}")
