# Runs PROGRAM in FOLDER, emptied before, so that no file of an earlier run helps it.
file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")
execute_process(COMMAND "${PROGRAM}" WORKING_DIRECTORY "${FOLDER}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ended with ${result}")
endif()
