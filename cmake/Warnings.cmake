# vuksim_warnings(<target>...) turns on the project's warnings for the target's own sources; nobody
# who links the target inherits them.
function(vuksim_warnings)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
            -Wunused-const-variable)
        # g++ 12 sees "text" + string overlap itself at -O3, wherever it inlines one.
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE -Wno-restrict)
        endif()
        if(VUKSIM_WERROR)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
    endforeach()
endfunction()
