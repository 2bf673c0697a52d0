# What both ways share: running a step that must succeed, and building and running the consumer.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(build_and_run_consumer)
    run("${CMAKE_COMMAND}" -S "${CONSUMER_DIR}" -B "${WORK_DIR}/build" -G "${GENERATOR}"
        "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" ${ARGN})
    run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build" --target consumer)
    run("${CMAKE_COMMAND}" -E chdir "${WORK_DIR}" "${WORK_DIR}/build/consumer")
    message(STATUS "${output}")
endfunction()
