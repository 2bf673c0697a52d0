# Installs the build, moves the installed tree, and lets the consumer find it at its new place.
include("${CMAKE_CURRENT_LIST_DIR}/steps.cmake")

file(REMOVE_RECURSE "${WORK_DIR}")
set(first_place "${WORK_DIR}/installed")
set(moved "${WORK_DIR}/moved to another place")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${first_place}")
file(RENAME "${first_place}" "${moved}")

# Nothing in it may remember where it was built or first installed.
file(GLOB_RECURSE package_files "${moved}/*.cmake")
list(LENGTH package_files count)
if(count LESS 4)
    message(FATAL_ERROR "Only ${count} package files are installed.")
endif()
foreach(package_file IN LISTS package_files)
    file(READ "${package_file}" text)
    foreach(old_place IN ITEMS "${SOURCE_DIR}" "${BUILD_DIR}")
        string(FIND "${text}" "${old_place}" position)
        if(NOT position EQUAL -1)
            message(FATAL_ERROR "${package_file} names ${old_place}.")
        endif()
    endforeach()
endforeach()
file(GLOB_RECURSE library "${moved}/libVUKSimPoolManager.so.1.0.0")
file(GLOB_RECURSE soname_link "${moved}/libVUKSimPoolManager.so.1")
if(NOT library OR NOT soname_link)
    message(FATAL_ERROR "libVUKSimPoolManager.so.1 -> .so.1.0.0 is not installed.")
endif()

build_and_run_consumer("-DCMAKE_PREFIX_PATH=${moved}" -DWANTED_VERSION=1)

# The consumer ran with the moved libraries, not with those of the build.
file(GET_RUNTIME_DEPENDENCIES EXECUTABLES "${WORK_DIR}/build/consumer"
    RESOLVED_DEPENDENCIES_VAR dependencies PRE_EXCLUDE_REGEXES "^lib(c|m|stdc|gcc|asan|ubsan)")
file(REAL_PATH "${moved}" real_moved)
set(ours ${dependencies})
list(FILTER ours INCLUDE REGEX "libVUKSim")
list(LENGTH ours count)
if(NOT count EQUAL 2)
    message(FATAL_ERROR "The consumer needs ${count} libraries of ours, not 2: ${ours}")
endif()
foreach(dependency IN LISTS ours)
    file(REAL_PATH "${dependency}" dependency)
    cmake_path(IS_PREFIX real_moved "${dependency}" inside)
    if(NOT inside)
        message(FATAL_ERROR "The consumer uses ${dependency}, outside ${real_moved}.")
    endif()
endforeach()

# Another major version is not this package.
execute_process(
    COMMAND "${CMAKE_COMMAND}" -S "${CONSUMER_DIR}" -B "${WORK_DIR}/build_2" -G "${GENERATOR}"
        "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_PREFIX_PATH=${moved}" -DWANTED_VERSION=2
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(result EQUAL 0)
    message(FATAL_ERROR "find_package(VUKSimPoolManager 2) took version 1.")
endif()
if(NOT output MATCHES "version: 1.0.0")
    message(FATAL_ERROR "find_package(VUKSimPoolManager 2) failed for another reason:\n${output}")
endif()
