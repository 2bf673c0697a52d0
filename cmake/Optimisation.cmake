# vuksim_one_unit(<shared library>) lets the optimiser see the library as a whole, in builds that are
# optimised: one class then calls another at no more cost than itself. Nobody outside replaces single
# functions of it.
include(CheckIPOSupported)
check_ipo_supported(RESULT vuksim_whole_library OUTPUT vuksim_no_whole_library LANGUAGES CXX)

function(vuksim_one_unit target)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    set_target_properties(${target} PROPERTIES
        INTERPROCEDURAL_OPTIMIZATION_RELEASE ${vuksim_whole_library}
        INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ${vuksim_whole_library})
endfunction()
