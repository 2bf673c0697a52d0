# vuksim_warnings(<target>...) turns on the project's warnings for the target's own sources; nobody
# who links the target inherits them.
function(vuksim_warnings)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
            -Wunused-const-variable)
        if(VUKSIM_WERROR)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
    endforeach()
endfunction()
